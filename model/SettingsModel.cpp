#include "SettingsModel.h"

#include "RGException.h"

#include <utility>

namespace TORVIXML {

// Where an index points: the handler row, a mode (list position) or a
// component (list positions of its mode and of itself), and the column.
struct SettingsModel::Cell
{
    RowKind kind = HandlerRow;
    int mode = -1;
    int component = -1;
    int column = NameColumn;
};

SettingsModel::SettingsModel(QObject* parent)
    : QAbstractItemModel(parent)
{
}

SettingsModel::~SettingsModel() = default;

void SettingsModel::setSettings(const TorviGuiModeSettings& settings)
{
    beginResetModel();
    m_settings = TorviGuiModeSettings(settings);
    m_settings.SetValidate(settings.GetValidate());
    m_modeIds.clear();
    for (int i = 0; i < std::as_const(m_settings).GetDataOperationMode().size(); ++i)
        m_modeIds.append(m_nextModeId++);
    endResetModel();
}

const TorviGuiModeSettings& SettingsModel::settings() const
{
    return m_settings;
}

void SettingsModel::setValidate(bool validate)
{
    m_settings.SetValidate(validate);
}

bool SettingsModel::validate() const
{
    return m_settings.GetValidate();
}

int SettingsModel::modeNumber(const QModelIndex& index) const
{
    if (!index.isValid() || index.model() != this)
        return -1;
    return locate(index).mode;
}

QModelIndex SettingsModel::modeIndex(int number) const
{
    if (number < 0 || number >= m_modeIds.size())
        return QModelIndex();
    return createIndex(number + 1, NameColumn, quintptr(0));
}

// Top-level rows have the internal id 0; a component's internal id is the
// id of its mode.
QModelIndex SettingsModel::index(int row, int column, const QModelIndex& parent) const
{
    if (!hasIndex(row, column, parent))
        return QModelIndex();
    if (!parent.isValid())
        return createIndex(row, column, quintptr(0));
    return createIndex(row, column, m_modeIds.at(parent.row() - 1));
}

QModelIndex SettingsModel::parent(const QModelIndex& child) const
{
    if (!child.isValid() || child.internalId() == 0)
        return QModelIndex();
    const int mode = m_modeIds.indexOf(child.internalId());
    return mode < 0 ? QModelIndex() : createIndex(mode + 1, NameColumn, quintptr(0));
}

int SettingsModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return 1 + m_modeIds.size();
    if (parent.column() != NameColumn)
        return 0;
    const Cell cell = locate(parent);
    if (cell.kind != ModeRow)
        return 0;
    return std::as_const(m_settings).GetDataOperationMode().at(cell.mode).GetGuiComponentSettings().size();
}

int SettingsModel::columnCount(const QModelIndex&) const
{
    return ColumnCount;
}

SettingsModel::Cell SettingsModel::locate(const QModelIndex& index) const
{
    Cell cell;
    cell.column = index.column();
    if (index.internalId() == 0) {
        cell.kind = index.row() == 0 ? HandlerRow : ModeRow;
        cell.mode = index.row() - 1;
    } else {
        cell.kind = ComponentRow;
        cell.mode = m_modeIds.indexOf(index.internalId());
        cell.component = index.row();
    }
    return cell;
}

QVariant SettingsModel::enumerationData(int value, const QStringList& displayNames, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
        // A value outside the name table (stored with validation off) has
        // no display name.
        return value >= 0 && value < displayNames.size() ? displayNames.at(value) : QString();
    case Qt::EditRole:
        return value;
    case ChoicesRole:
        return displayNames;
    default:
        return QVariant();
    }
}

QVariant SettingsModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || !checkIndex(index))
        return QVariant();
    const Cell cell = locate(index);
    if (role == RowKindRole)
        return int(cell.kind);
    const TorviGuiModeSettings& settings = m_settings;
    switch (cell.kind) {
    case HandlerRow:
        if (cell.column != NameColumn)
            return QVariant();
        if (role == Qt::ToolTipRole)
            return tr("Operation mode handler");
        return enumerationData(settings.GetOperationModeHandler(),
                               TorviGuiModeSettings::GetGUIOperationModeHandlers(), role);
    case ModeRow:
        if (cell.column != NameColumn || (role != Qt::DisplayRole && role != Qt::EditRole))
            return QVariant();
        return settings.GetDataOperationMode().at(cell.mode).GetName();
    case ComponentRow: {
        const GuiComponentSettings& component =
            settings.GetDataOperationMode().at(cell.mode).GetGuiComponentSettings().at(cell.component);
        if (cell.column == UsageColumn)
            return enumerationData(component.GetGuiComponentUsage(),
                                   GuiComponentSettings::GetGUIGuiComponentUsages(), role);
        if (cell.column == DockAreaColumn)
            return enumerationData(component.GetDockWidgetLocation(),
                                   GuiComponentSettings::GetGUIDockWidgetLocations(), role);
        if (role != Qt::DisplayRole && role != Qt::EditRole)
            return QVariant();
        return component.GetName();
    }
    }
    return QVariant();
}

// The validation flag reaches list elements only when their owner hands it
// down (the library does so at its working entries); an element appended
// from outside carries its own. Handing it down before every change makes
// the elements' setters refuse exactly when the tree is in validation mode.
void SettingsModel::handDownValidation()
{
    m_settings.SetValidate(m_settings.GetValidate());
}

// Runs an operation of the library; its refusal (an exception) is reported
// through refused() and answered with false.
template <typename Operation>
bool SettingsModel::attempt(Operation&& operation)
{
    try {
        operation();
    } catch (const RGException& e) {
        Q_EMIT refused(e.GetMessageText());
        return false;
    }
    return true;
}

// Runs one setter on object; a refusal leaves everything as it was (the
// setters change nothing when they throw).
template <typename Object, typename Change>
bool SettingsModel::change(const QModelIndex& index, Object& object, Change&& change)
{
    const Object before(object);
    if (!attempt([&] { change(object); }))
        return false;
    if (object != before)
        Q_EMIT dataChanged(index, index, {Qt::DisplayRole, Qt::EditRole});
    return true;
}

bool SettingsModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || !checkIndex(index)
        || !(flags(index) & Qt::ItemIsEditable))
        return false;
    const Cell cell = locate(index);
    bool isNumber = false;
    const int number = value.toInt(&isNumber);
    const bool enumerationCell = cell.kind == HandlerRow || cell.column != NameColumn;
    if (enumerationCell && !isNumber)
        return false;

    handDownValidation();
    if (cell.kind == HandlerRow)
        return change(index, m_settings, [number](TorviGuiModeSettings& settings) {
            settings.SetOperationModeHandler(TorviGuiModeSettings::OperationModeHandler(number));
        });
    DataOperationMode& mode = m_settings.GetDataOperationMode()[cell.mode];
    if (cell.kind == ModeRow)
        return change(index, mode, [&value](DataOperationMode& m) { m.SetName(value.toString()); });
    GuiComponentSettings& component = mode.GetGuiComponentSettings()[cell.component];
    return change(index, component, [&](GuiComponentSettings& c) {
        switch (cell.column) {
        case UsageColumn:
            c.SetGuiComponentUsage(GuiComponentSettings::GuiComponentUsage(number));
            break;
        case DockAreaColumn:
            c.SetDockWidgetLocation(GuiComponentSettings::DockWidgetLocation(number));
            break;
        default:
            c.SetName(value.toString());
        }
    });
}

Qt::ItemFlags SettingsModel::flags(const QModelIndex& index) const
{
    if (!index.isValid() || !checkIndex(index))
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    const Cell cell = locate(index);
    if (cell.kind != ModeRow)
        flags |= Qt::ItemNeverHasChildren;
    if (cell.column == NameColumn || cell.kind == ComponentRow)
        flags |= Qt::ItemIsEditable;
    return flags;
}

QVariant SettingsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QVariant();
    switch (section) {
    case NameColumn:
        return tr("Name");
    case UsageColumn:
        return tr("Usage");
    case DockAreaColumn:
        return tr("Dock area");
    default:
        return QVariant();
    }
}

bool SettingsModel::appendModes(const QVector<DataOperationMode>& modes)
{
    handDownValidation();
    // Appended to a copy first, so that a refusal of any of them leaves the
    // tree as it was.
    TorviGuiModeSettings next(m_settings);
    if (!attempt([&] {
            for (const DataOperationMode& mode : modes)
                next.AppendDataOperationMode(mode);
        }))
        return false;
    const int first = 1 + m_modeIds.size();
    beginInsertRows(QModelIndex(), first, first + modes.size() - 1);
    m_settings = next;
    for (int i = 0; i < modes.size(); ++i)
        m_modeIds.append(m_nextModeId++);
    endInsertRows();
    return true;
}

bool SettingsModel::appendComponents(int mode, const QVector<GuiComponentSettings>& components)
{
    handDownValidation();
    DataOperationMode next(std::as_const(m_settings).GetDataOperationMode().at(mode));
    if (!attempt([&] {
            for (const GuiComponentSettings& component : components)
                next.AppendGuiComponentSettings(component);
        }))
        return false;
    const QModelIndex parent = modeIndex(mode);
    const int first = rowCount(parent);
    beginInsertRows(parent, first, first + components.size() - 1);
    m_settings.GetDataOperationMode()[mode] = next;
    endInsertRows();
    return true;
}

bool SettingsModel::appendMode(const DataOperationMode& mode)
{
    return appendModes({mode});
}

bool SettingsModel::appendComponent(const QModelIndex& modeIndex, const GuiComponentSettings& component)
{
    const int mode = modeNumber(modeIndex);
    if (mode < 0 || locate(modeIndex).kind != ModeRow)
        return false;
    return appendComponents(mode, {component});
}

bool SettingsModel::insertRows(int row, int count, const QModelIndex& parent)
{
    if (count < 1 || row != rowCount(parent))
        return false;
    if (!parent.isValid())
        return appendModes(QVector<DataOperationMode>(count));
    if (parent.model() != this || parent.column() != NameColumn || locate(parent).kind != ModeRow)
        return false;
    return appendComponents(locate(parent).mode, QVector<GuiComponentSettings>(count));
}

// The library has no removal: the list is replaced by the list without the
// rows (SetDataOperationMode, SetGuiComponentSettings).
bool SettingsModel::removeRows(int row, int count, const QModelIndex& parent)
{
    if (count < 1 || row < 0 || row + count > rowCount(parent))
        return false;
    if (!parent.isValid()) {
        if (row == 0) // the handler row stays
            return false;
        QVector<DataOperationMode> modes = std::as_const(m_settings).GetDataOperationMode();
        modes.remove(row - 1, count);
        beginRemoveRows(parent, row, row + count - 1);
        m_settings.SetDataOperationMode(modes);
        m_modeIds.remove(row - 1, count);
        endRemoveRows();
        return true;
    }
    if (parent.model() != this || parent.column() != NameColumn || locate(parent).kind != ModeRow)
        return false;
    DataOperationMode& mode = m_settings.GetDataOperationMode()[locate(parent).mode];
    QVector<GuiComponentSettings> components = std::as_const(mode).GetGuiComponentSettings();
    components.remove(row, count);
    beginRemoveRows(parent, row, row + count - 1);
    mode.SetGuiComponentSettings(components);
    endRemoveRows();
    return true;
}

} // namespace TORVIXML
