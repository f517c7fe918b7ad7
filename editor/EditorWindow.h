#ifndef TORVIXML_EDITOR_EDITORWINDOW_H
#define TORVIXML_EDITOR_EDITORWINDOW_H

#include "SettingsDocument.h"

#include <QMainWindow>

class QAction;
class QLabel;
class QTreeView;

namespace TORVIXML {
class SettingsModel;

namespace Editor {

/// The main window of torvixml-editor: the settings tree with choosers for
/// the enumerations on the left, the preview of the selected mode on the
/// right, the library's messages in the status bar.
class EditorWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit EditorWindow(QWidget* parent = nullptr);
    ~EditorWindow() override;

    /// Registers the editor's catalogue with the translation service (once
    /// per process, before the first window is made).
    static void registerTranslations();

    /// Opens the document (any form) in place of the current one, without
    /// asking. On failure shows the reason and keeps the current document.
    bool openFile(const QString& path);
    /// Saves to path in the form given; it becomes the current file.
    bool saveFile(const QString& path, DocumentForm form);

    QTreeView* treeView() const;
    SettingsModel* model() const;
    QLabel* previewLabel() const;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void createActions();
    void open();
    bool save();
    bool saveAs();
    void addMode();
    void addComponent();
    void removeCurrent();
    bool maybeDiscard();
    void showProblem(const QString& message);
    void updatePreview();
    void updateTitle();
    void updateActions();

    SettingsModel* m_model;
    QTreeView* m_view;
    QLabel* m_preview;
    QString m_path;
    DocumentForm m_form = DocumentForm::Xml;
    QAction* m_validateAction = nullptr;
    QAction* m_addComponentAction = nullptr;
    QAction* m_removeAction = nullptr;
};

} // namespace Editor
} // namespace TORVIXML

#endif
