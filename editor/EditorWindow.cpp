#include "EditorWindow.h"

#include "ChoiceDelegate.h"
#include "ModePreview.h"
#include "SettingsModel.h"

#include <TorviXML/TorviXML.h>
#include <TorviXML/TranslationCenter.h>

#include <QAction>
#include <QCloseEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QScrollArea>
#include <QSplitter>
#include <QStatusBar>
#include <QToolBar>
#include <QTreeView>

namespace TORVIXML {
namespace Editor {

EditorWindow::EditorWindow(QWidget* parent)
    : QMainWindow(parent)
    , m_model(new SettingsModel(this))
    , m_view(new QTreeView)
    , m_preview(new QLabel)
{
    m_model->setValidate(true);
    m_view->setModel(m_model);
    m_view->setItemDelegate(new ChoiceDelegate(m_view));
    m_view->setSelectionBehavior(QAbstractItemView::SelectItems);
    m_view->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed
                            | QAbstractItemView::AnyKeyPressed);
    m_view->setAllColumnsShowFocus(false);
    m_view->header()->setStretchLastSection(true);

    m_preview->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_preview->setAccessibleName(tr("Preview of the selected mode"));
    auto* previewArea = new QScrollArea;
    previewArea->setWidget(m_preview);
    previewArea->setWidgetResizable(true);
    previewArea->setFocusPolicy(Qt::StrongFocus);

    auto* splitter = new QSplitter;
    splitter->addWidget(m_view);
    splitter->addWidget(previewArea);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({640, 740});
    setCentralWidget(splitter);
    setTabOrder(m_view, previewArea);

    createActions();
    connect(m_model, &SettingsModel::refused, this, &EditorWindow::showProblem);
    for (auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved}) {
        connect(m_model, signal, this, [this] {
            setWindowModified(true);
            updatePreview();
        });
    }
    connect(m_model, &QAbstractItemModel::dataChanged, this, [this] {
        setWindowModified(true);
        updatePreview();
    });
    connect(m_view->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] {
        updatePreview();
        updateActions();
    });

    statusBar()->showMessage(tr("Ready"));
    resize(1400, 560);
    updateTitle();
    updateActions();
    updatePreview();
    m_view->setFocus();
}

EditorWindow::~EditorWindow() = default;

void EditorWindow::registerTranslations()
{
    TranslationCenter::Instance().Register(QStringLiteral("TorviXMLEditor"));
}

void EditorWindow::createActions()
{
    QMenu* file = menuBar()->addMenu(tr("&File"));
    QAction* openAction = file->addAction(tr("&Open..."), this, &EditorWindow::open);
    openAction->setShortcut(QKeySequence::Open);
    file->addAction(tr("&Save"), this, &EditorWindow::save)->setShortcut(QKeySequence::Save);
    file->addAction(tr("Save &As..."), this, &EditorWindow::saveAs)->setShortcut(QKeySequence::SaveAs);
    file->addSeparator();
    file->addAction(tr("&Quit"), this, &QWidget::close)->setShortcut(QKeySequence::Quit);

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    QAction* addModeAction = edit->addAction(tr("Add &mode..."), this, &EditorWindow::addMode);
    addModeAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_M));
    m_addComponentAction = edit->addAction(tr("Add &component..."), this, &EditorWindow::addComponent);
    m_addComponentAction->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_M));
    m_removeAction = edit->addAction(tr("&Remove"), this, &EditorWindow::removeCurrent);
    m_removeAction->setShortcut(QKeySequence::Delete);
    edit->addSeparator();
    m_validateAction = edit->addAction(tr("&Validate"));
    m_validateAction->setCheckable(true);
    m_validateAction->setChecked(true);
    m_validateAction->setToolTip(tr("Refuse what the library refuses in validation mode"));
    connect(m_validateAction, &QAction::toggled, m_model, &SettingsModel::setValidate);

    QToolBar* tools = addToolBar(tr("Main"));
    tools->setObjectName(QStringLiteral("mainToolBar"));
    tools->addActions({openAction, addModeAction, m_addComponentAction, m_removeAction, m_validateAction});
}

QTreeView* EditorWindow::treeView() const
{
    return m_view;
}

SettingsModel* EditorWindow::model() const
{
    return m_model;
}

QLabel* EditorWindow::previewLabel() const
{
    return m_preview;
}

bool EditorWindow::openFile(const QString& path)
{
    TorviGuiModeSettings settings;
    QString message;
    if (!loadDocument(path, m_validateAction->isChecked(), settings, m_form, message)) {
        showProblem(tr("%1 was not opened: %2").arg(QFileInfo(path).fileName(), message));
        return false;
    }
    m_model->setSettings(settings);
    m_path = path;
    setWindowModified(false);
    m_view->expandAll();
    for (int column = 0; column < SettingsModel::ColumnCount; ++column)
        m_view->resizeColumnToContents(column);
    m_view->setCurrentIndex(m_model->modeIndex(0).isValid() ? m_model->modeIndex(0) : m_model->index(0, 0));
    statusBar()->showMessage(tr("Opened %1").arg(QFileInfo(path).fileName()));
    updateTitle();
    updatePreview();
    return true;
}

bool EditorWindow::saveFile(const QString& path, DocumentForm form)
{
    QString message;
    if (!saveDocument(path, form, m_model->settings(), message)) {
        showProblem(tr("%1 was not saved: %2").arg(QFileInfo(path).fileName(), message));
        return false;
    }
    m_path = path;
    m_form = form;
    setWindowModified(false);
    statusBar()->showMessage(tr("Saved %1").arg(QFileInfo(path).fileName()));
    updateTitle();
    return true;
}

void EditorWindow::open()
{
    if (!maybeDiscard())
        return;
    const QString path = QFileDialog::getOpenFileName(this, tr("Open settings"), QFileInfo(m_path).path(),
                                                      tr("Settings documents (*.xml *.bin);;All files (*)"));
    if (!path.isEmpty())
        openFile(path);
}

bool EditorWindow::save()
{
    return m_path.isEmpty() ? saveAs() : saveFile(m_path, m_form);
}

bool EditorWindow::saveAs()
{
    const QStringList filters = {tr("XML document (*.xml)"), tr("Binary document (*.bin)"),
                                 tr("Compressed binary document (*.bin)")};
    QString selected = filters.at(int(m_form));
    const QString path = QFileDialog::getSaveFileName(this, tr("Save settings as"), m_path,
                                                      filters.join(QStringLiteral(";;")), &selected);
    if (path.isEmpty())
        return false;
    return saveFile(path, DocumentForm(std::max(0, int(filters.indexOf(selected)))));
}

void EditorWindow::addMode()
{
    bool ok = false;
    const QString name = QInputDialog::getText(this, tr("Add mode"), tr("Name of the new mode:"),
                                               QLineEdit::Normal, QString(), &ok);
    if (!ok)
        return;
    DataOperationMode mode;
    mode.SetName(name);
    if (m_model->appendMode(mode))
        m_view->setCurrentIndex(m_model->modeIndex(m_model->rowCount() - 2));
}

void EditorWindow::addComponent()
{
    const QModelIndex mode = m_model->modeIndex(m_model->modeNumber(m_view->currentIndex()));
    if (!mode.isValid())
        return;
    bool ok = false;
    const QString name = QInputDialog::getText(this, tr("Add component"), tr("Name of the new component:"),
                                               QLineEdit::Normal, QString(), &ok);
    if (!ok)
        return;
    // A new component is merely available and not docked until chosen
    // otherwise: the defaults, set explicitly.
    GuiComponentSettings component;
    component.ResetToDefault();
    component.SetName(name);
    if (m_model->appendComponent(mode, component)) {
        m_view->expand(mode);
        m_view->setCurrentIndex(m_model->index(m_model->rowCount(mode) - 1, SettingsModel::NameColumn, mode));
    }
}

void EditorWindow::removeCurrent()
{
    const QModelIndex current = m_view->currentIndex();
    if (current.data(SettingsModel::RowKindRole).toInt() != SettingsModel::HandlerRow)
        m_model->removeRow(current.row(), current.parent());
}

bool EditorWindow::maybeDiscard()
{
    if (!isWindowModified())
        return true;
    const QMessageBox::StandardButton answer = QMessageBox::question(
        this, tr("Unsaved changes"), tr("The settings have been changed. Save the changes?"),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Save)
        return save();
    return answer == QMessageBox::Discard;
}

void EditorWindow::closeEvent(QCloseEvent* event)
{
    if (maybeDiscard())
        event->accept();
    else
        event->ignore();
}

void EditorWindow::showProblem(const QString& message)
{
    statusBar()->showMessage(message);
}

void EditorWindow::updatePreview()
{
    const int mode = m_model->modeNumber(m_view->currentIndex());
    if (mode < 0) {
        m_preview->setPixmap(QPixmap());
        m_preview->setText(tr("Select a mode to see its main window."));
        return;
    }
    m_preview->setPixmap(
        QPixmap::fromImage(Preview::renderMode(m_model->settings().GetDataOperationMode().at(mode))));
}

void EditorWindow::updateTitle()
{
    const QString document = m_path.isEmpty() ? tr("Untitled") : QFileInfo(m_path).fileName();
    setWindowTitle(tr("%1[*] - TorviXML Editor").arg(document));
}

void EditorWindow::updateActions()
{
    const int kind = m_view->currentIndex().data(SettingsModel::RowKindRole).toInt();
    const bool inMode = m_view->currentIndex().isValid() && kind != SettingsModel::HandlerRow;
    m_addComponentAction->setEnabled(inMode);
    m_removeAction->setEnabled(inMode);
}

} // namespace Editor
} // namespace TORVIXML
