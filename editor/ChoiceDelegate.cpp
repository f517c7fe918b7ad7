#include "ChoiceDelegate.h"

#include "SettingsModel.h"

#include <QComboBox>

namespace TORVIXML {
namespace Editor {

QWidget* ChoiceDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                      const QModelIndex& index) const
{
    const QStringList choices = index.data(SettingsModel::ChoicesRole).toStringList();
    if (choices.isEmpty())
        return QStyledItemDelegate::createEditor(parent, option, index);
    auto* chooser = new QComboBox(parent);
    chooser->addItems(choices);
    // Picking an entry with the mouse or from the open list is the choice:
    // it is written at once.
    connect(chooser, QOverload<int>::of(&QComboBox::activated), this, &ChoiceDelegate::commitAndClose);
    return chooser;
}

void ChoiceDelegate::commitAndClose()
{
    auto* chooser = qobject_cast<QComboBox*>(sender());
    Q_EMIT commitData(chooser);
    Q_EMIT closeEditor(chooser);
}

void ChoiceDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    if (auto* chooser = qobject_cast<QComboBox*>(editor))
        chooser->setCurrentIndex(index.data(Qt::EditRole).toInt());
    else
        QStyledItemDelegate::setEditorData(editor, index);
}

void ChoiceDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
    if (auto* chooser = qobject_cast<QComboBox*>(editor)) {
        if (chooser->currentIndex() >= 0)
            model->setData(index, chooser->currentIndex(), Qt::EditRole);
    } else {
        QStyledItemDelegate::setModelData(editor, model, index);
    }
}

} // namespace Editor
} // namespace TORVIXML
