#ifndef TORVIXML_FUZZ_BINARYMODEL_H
#define TORVIXML_FUZZ_BINARYMODEL_H

// An independent, deliberately plain model of reading a plain binary
// document, written from the format description rather than from the
// library: a byte cursor with the short-read rules of QDataStream, the
// record loop with its length accounting, the text, enumeration and list
// payloads, the setters' and appends' refusals in validation mode. The
// fuzz target reads every plain document with both the library and the
// model and requires the same result, the same exception message and the
// same object afterwards.

#include "FuzzSupport.h"

#include <QStringList>
#include <QVector>

namespace TorviFuzz {
namespace Model {

/// Reading from a byte array as a QDataStream over a buffer does: a read
/// that does not find enough bytes consumes what is there, yields zero and
/// marks the stream as read past its end.
class Cursor
{
public:
    explicit Cursor(const QByteArray& bytes)
        : m_bytes(bytes)
    {
    }
    bool AtEnd() const { return m_pos >= m_bytes.size(); }
    bool PastEnd() const { return m_pastEnd; }
    qint64 Left() const { return m_bytes.size() - m_pos; }

    quint32 UInt32()
    {
        if (Left() < 4) {
            ShortRead();
            return 0;
        }
        const auto* u = reinterpret_cast<const uchar*>(m_bytes.constData() + m_pos);
        m_pos += 4;
        return (quint32(u[0]) << 24) | (quint32(u[1]) << 16) | (quint32(u[2]) << 8) | quint32(u[3]);
    }
    qint32 Int32() { return qint32(UInt32()); }

    /// count bytes, or false after a short read.
    bool Bytes(quint32 count, QByteArray& out)
    {
        if (quint64(Left()) < count) {
            ShortRead();
            return false;
        }
        out = m_bytes.mid(int(m_pos), int(count));
        m_pos += count;
        return true;
    }

    /// The payload of an unknown record: nothing for a length of 0 or less.
    void Skip(qint32 length)
    {
        if (length <= 0)
            return;
        if (Left() < length) {
            ShortRead();
            return;
        }
        m_pos += length;
    }

private:
    void ShortRead()
    {
        m_pos = m_bytes.size();
        m_pastEnd = true;
    }

    const QByteArray& m_bytes;
    qint64 m_pos = 0;
    bool m_pastEnd = false;
};

struct Thrown
{
    QString message;
};

const qint32 NameId = 1490308454;
const qint32 UsageId = 249323652;
const qint32 LocationId = 388603748;
const qint32 ComponentListId = -1059801328;
const qint32 ModeListId = -1785428698;
const qint32 HandlerId = 1861080544;

inline const QStringList& Usages()
{
    static const QStringList names = {QStringLiteral("AVAILABLE"), QStringLiteral("DEFAULT_DISPLAY")};
    return names;
}
inline const QStringList& Locations()
{
    static const QStringList names = {
        QStringLiteral("LeftDockWidgetArea"),   QStringLiteral("RightDockWidgetArea"),
        QStringLiteral("TopDockWidgetArea"),    QStringLiteral("BottomDockWidgetArea"),
        QStringLiteral("CenterDockWidgetArea"), QStringLiteral("FloatingDockWidgetArea "),
        QStringLiteral("NoDockWidgetArea")};
    return names;
}
inline const QStringList& Handlers()
{
    static const QStringList names = {QStringLiteral("TX470ManagementComponent"),
                                      QStringLiteral("PMR830ManagementComponent"),
                                      QStringLiteral("QLSManagementComponent"), QStringLiteral("VbkManagementComponent")};
    return names;
}

/// A text payload: a null or empty array, and a short read, give an empty,
/// non-null text.
inline QString Text(Cursor& in)
{
    const quint32 count = in.UInt32();
    if (count == 0xFFFFFFFFu || count == 0 || in.PastEnd())
        return QStringLiteral("");
    QByteArray bytes;
    if (!in.Bytes(count, bytes))
        return QStringLiteral("");
    return QString::fromUtf8(bytes.constData(), bytes.size()); // NUL bytes included
}

struct Enum
{
    bool set = false;
    int value = -1;

    void Read(Cursor& in, const QStringList& names, bool validate, const char* className, const char* member)
    {
        const int v = names.indexOf(Text(in));
        if (v < 0 && validate)
            throw Thrown{QStringLiteral("enum is not valid (classname=%1,membername=%2)")
                             .arg(QLatin1String(className), QLatin1String(member))};
        value = v;
        set = true;
    }
};

struct Name
{
    bool set = false;
    QString value;
};

inline QString LengthError(const char* className)
{
    return QLatin1String(className)
        + QStringLiteral("::SetBinary(...): Length error occurred during processing of binary representation");
}

template <typename ReadMember>
void Records(Cursor& in, qint32 length, const char* className, ReadMember&& read)
{
    qint64 remaining = length;
    while (remaining > 0 && !in.AtEnd()) {
        const qint32 memberId = in.Int32();
        const qint32 recordLength = in.Int32();
        remaining -= 8 + qint64(recordLength);
        if (!read(memberId, recordLength))
            in.Skip(recordLength);
    }
    if (remaining != 0)
        throw Thrown{LengthError(className)};
}

template <typename T>
void List(Cursor& in, bool validate, QVector<T>& list, bool& listSet, const char* ownerName)
{
    const qint32 count = in.Int32();
    for (qint32 i = 0; i < count; ++i) {
        // Past the end, an element gets the object length 0 and no data: the
        // append refuses it in validation mode; outside it the owner stops
        // with its length error rather than append empty elements.
        if (!validate && in.AtEnd())
            throw Thrown{LengthError(ownerName)};
        const qint32 length = in.Int32();
        T element;
        element.Read(in, length, validate);
        if (validate && !element.HasData())
            throw Thrown{QLatin1String(ownerName) + QStringLiteral(": Tried to append not completely defined or "
                                                                    "invalid item ")
                         + QLatin1String(T::ClassName) + QLatin1Char('.')};
        list.append(element);
        listSet = true;
    }
}

struct Component
{
    static constexpr const char* ClassName = "GuiComponentSettings";
    Name name;
    Enum usage;
    Enum location;

    bool HasData() const { return usage.set && location.set && !name.value.isNull(); }

    void Read(Cursor& in, qint32 length, bool validate)
    {
        Records(in, length, ClassName, [&](qint32 id, qint32) {
            if (id == NameId) {
                name.value = Text(in);
                name.set = true;
            } else if (id == UsageId) {
                usage.Read(in, Usages(), validate, ClassName, "m_guiComponentUsage");
            } else if (id == LocationId) {
                location.Read(in, Locations(), validate, ClassName, "m_dockWidgetLocation");
            } else {
                return false;
            }
            return true;
        });
    }
};

struct Mode
{
    static constexpr const char* ClassName = "DataOperationMode";
    Name name;
    QVector<Component> components;
    bool componentsSet = false;

    bool HasData() const { return !name.value.isNull(); }

    void Read(Cursor& in, qint32 length, bool validate)
    {
        Records(in, length, ClassName, [&](qint32 id, qint32) {
            if (id == NameId) {
                name.value = Text(in);
                name.set = true;
            } else if (id == ComponentListId) {
                List(in, validate, components, componentsSet, ClassName);
            } else {
                return false;
            }
            return true;
        });
    }
};

struct Root
{
    static constexpr const char* ClassName = "TorviGuiModeSettings";
    Enum handler;
    QVector<Mode> modes;
    bool modesSet = false;

    void Read(Cursor& in, qint32 length, bool validate)
    {
        Records(in, length, ClassName, [&](qint32 id, qint32) {
            if (id == ModeListId)
                List(in, validate, modes, modesSet, ClassName);
            else if (id == HandlerId)
                handler.Read(in, Handlers(), validate, ClassName, "m_operationModeHandler");
            else
                return false;
            return true;
        });
    }
};

/// SetBinaryRepresentation(QByteArray&) of a fresh root on a plain
/// document (class id, object length equal to the rest of the array).
inline Outcome ReadPlainDocument(const QByteArray& document, bool validate, Root& root)
{
    Cursor in(document);
    in.Int32(); // the class id, checked by the caller
    const qint32 length = in.Int32();
    Outcome outcome;
    try {
        root.Read(in, length, validate);
        outcome.result = !in.PastEnd() && in.AtEnd();
    } catch (const Thrown& thrown) {
        outcome.exception = thrown.message;
    }
    return outcome;
}

inline bool SameName(const Name& model, bool set, const QString& value)
{
    return model.set == set && model.value.isNull() == value.isNull() && model.value == value;
}

inline bool SameEnum(const Enum& model, bool set, int value)
{
    // An unset member holds its default, which the model does not track.
    return model.set == set && (!set || model.value == value);
}

/// Whether the library's object holds what the model read.
inline bool Same(const Root& model, const TorviGuiModeSettings& object)
{
    if (!SameEnum(model.handler, object.IsOperationModeHandlerSet(), int(object.GetOperationModeHandler())))
        return false;
    if (model.modesSet != object.IsDataOperationModeSet())
        return false;
    const QVector<DataOperationMode>& modes = object.GetDataOperationMode();
    if (modes.size() != model.modes.size())
        return false;
    for (int i = 0; i < modes.size(); ++i) {
        const Mode& m = model.modes.at(i);
        const DataOperationMode& mode = modes.at(i);
        if (!SameName(m.name, mode.IsNameSet(), mode.GetName()) || m.componentsSet != mode.IsGuiComponentSettingsSet())
            return false;
        const QVector<GuiComponentSettings>& components = mode.GetGuiComponentSettings();
        if (components.size() != m.components.size())
            return false;
        for (int k = 0; k < components.size(); ++k) {
            const Component& c = m.components.at(k);
            const GuiComponentSettings& component = components.at(k);
            if (!SameName(c.name, component.IsNameSet(), component.GetName())
                || !SameEnum(c.usage, component.IsGuiComponentUsageSet(), int(component.GetGuiComponentUsage()))
                || !SameEnum(c.location, component.IsDockWidgetLocationSet(),
                             int(component.GetDockWidgetLocation())))
                return false;
        }
    }
    return true;
}

} // namespace Model
} // namespace TorviFuzz

#endif
