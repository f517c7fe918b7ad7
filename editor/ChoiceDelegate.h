#ifndef TORVIXML_EDITOR_CHOICEDELEGATE_H
#define TORVIXML_EDITOR_CHOICEDELEGATE_H

#include <QStyledItemDelegate>

namespace TORVIXML {
namespace Editor {

/// Edits the cells for which the model offers choices (SettingsModel's
/// ChoicesRole: the translated display names, index k for value k) with a
/// QComboBox that lists them, and writes the chosen row back as the value.
/// Other cells get the standard editors.
class ChoiceDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

private Q_SLOTS:
    void commitAndClose();
};

} // namespace Editor
} // namespace TORVIXML

#endif
