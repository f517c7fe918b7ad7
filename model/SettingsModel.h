#ifndef TORVIXML_SETTINGSMODEL_H
#define TORVIXML_SETTINGSMODEL_H

#include "torvixmlmodel_export.h"

#include "TorviGuiModeSettings.h"

#include <QAbstractItemModel>
#include <QVector>

namespace TORVIXML {

/**
 * A Qt item model over one TorviGuiModeSettings tree, for Qt's views.
 *
 * Rows: the first top-level row is the operation-mode handler, the further
 * top-level rows are the data operation modes in list order, and the
 * children of a mode are its GUI components. Columns: Name, Usage and Dock
 * area. The handler row shows the handler in its Name column; a mode row
 * has only a name.
 *
 * Qt::DisplayRole gives what a person reads (names, translated display
 * names of the enumeration values), Qt::EditRole the values (names as
 * QString, enumeration values as int), ChoicesRole the translated display
 * names that a chooser offers for an enumeration cell (index k for value k).
 *
 * Every change goes through the library's setters and appends, so in
 * validation mode (the settings' GetValidate()) the model refuses exactly
 * what the library refuses: it then changes nothing and emits refused()
 * with the library's message. Change signals are exact: dataChanged() for
 * the one cell whose member changed (its value or its set flag), nothing
 * when the setter left the member as it was.
 *
 * The library's lists grow at their end only, so insertRows() appends:
 * it accepts only row == rowCount(parent) and appends new, empty elements
 * (which validation mode refuses, as the library does). appendMode() and
 * appendComponent() append given elements.
 */
class TORVIXMLMODEL_EXPORT SettingsModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column { NameColumn = 0, UsageColumn = 1, DockAreaColumn = 2, ColumnCount = 3 };

    enum Role {
        /// QStringList: the translated display names a chooser lists for an
        /// enumeration cell; no value for other cells.
        ChoicesRole = Qt::UserRole + 1,
        /// int, a RowKind: what the row stands for.
        RowKindRole
    };

    enum RowKind { HandlerRow = 0, ModeRow = 1, ComponentRow = 2 };

    explicit SettingsModel(QObject* parent = nullptr);
    ~SettingsModel() override;

    /// Replaces the tree (a copy is taken, validation flag included) and
    /// resets the model.
    void setSettings(const TorviGuiModeSettings& settings);
    /// The tree as edited so far.
    const TorviGuiModeSettings& settings() const;

    /// Switches validation mode on or off for the whole tree.
    void setValidate(bool validate);
    bool validate() const;

    /// The position in the settings' mode list of the mode that index
    /// belongs to (a mode row or one of its components), -1 for the handler
    /// row and invalid indexes.
    int modeNumber(const QModelIndex& index) const;
    /// The index of column 0 of the row of mode number (list position).
    QModelIndex modeIndex(int number) const;

    /// Appends a copy of the mode through AppendDataOperationMode. Returns
    /// false (and emits refused()) when the library refuses it.
    bool appendMode(const DataOperationMode& mode);
    /// Appends a copy of the component to the mode of modeIndex (a mode
    /// row) through AppendGuiComponentSettings.
    bool appendComponent(const QModelIndex& modeIndex, const GuiComponentSettings& component);

    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    bool insertRows(int row, int count, const QModelIndex& parent = QModelIndex()) override;
    bool removeRows(int row, int count, const QModelIndex& parent = QModelIndex()) override;

Q_SIGNALS:
    /// The library refused a change; message is its exception text
    /// (RGException::GetMessageText()).
    void refused(const QString& message);

private:
    struct Cell;
    Cell locate(const QModelIndex& index) const;
    QVariant enumerationData(int value, const QStringList& displayNames, int role) const;
    template <typename Operation>
    bool attempt(Operation&& operation);
    template <typename Object, typename Change>
    bool change(const QModelIndex& index, Object& object, Change&& change);
    bool appendModes(const QVector<DataOperationMode>& modes);
    bool appendComponents(int mode, const QVector<GuiComponentSettings>& components);
    void handDownValidation();

    TorviGuiModeSettings m_settings;
    // A stable id per mode row, kept beside the mode list: the internal id
    // of a component index names its mode, so that indexes of components
    // stay right when modes before theirs are inserted or removed.
    QVector<quintptr> m_modeIds;
    quintptr m_nextModeId = 1;
};

} // namespace TORVIXML

#endif
