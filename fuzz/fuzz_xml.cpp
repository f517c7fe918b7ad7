// libFuzzer target: whole-document XML reading of a TorviGuiModeSettings.
//
// The input is read through SetXmlString (decoded as UTF-8 first) with
// validation off and on, into a fresh object and, with resetFirst, into one
// that already holds a tree; and as raw bytes through LoadXml(QFile*) from a
// memory-backed file, so that the XML reader's own encoding detection and
// decoding (declarations, byte order marks, invalid UTF-8) are exercised,
// also into both kinds of object. A read into a filled object must end like
// the read into a fresh one, or leave the object as it was; a second read of
// a document that read replaces the first. The root's own reader
// (ProcessXml) also reads the document element without the whole-document
// read's discarding, so that the objects a broken document leaves go
// through the oracles of FuzzSupport.h as well; besides, validation mode may
// only add refusals.

#include "FuzzSupport.h"

#include <QXmlStreamReader>

#include <cstddef>
#include <cstdint>

using namespace TorviFuzz;

namespace {

Outcome ReadString(TorviGuiModeSettings& object, const QString& xml, bool resetFirst)
{
    return Attempt([&] { return object.SetXmlString(xml, resetFirst); });
}

Outcome Load(TorviGuiModeSettings& object, const QByteArray& bytes)
{
    MemoryFile file(bytes);
    return Attempt([&] { return object.LoadXml(&file); });
}

/// The root's own reader on the document element, as the whole-document
/// read runs it, but keeping what it read up to a break. Only for documents
/// within the whole-document read's limits on expansion and attributes,
/// which this reader does not apply itself.
void ReadPartially(TorviGuiModeSettings& object, const QString& xml)
{
    QXmlStreamReader reader(xml);
    while (!reader.atEnd() && reader.readNext() != QXmlStreamReader::StartElement) {
    }
    if (!reader.isStartElement() || reader.name() != object.GetObjectName())
        return;
    try {
        object.ProcessXml(reader);
    } catch (const ReportException&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Checker check;
    const QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    const QString text = QString::fromUtf8(bytes.constData(), bytes.size()); // NUL bytes included

    TorviGuiModeSettings fresh[2];
    Outcome freshOutcome[2];
    TorviGuiModeSettings loaded[2];
    Outcome loadOutcome[2];
    for (const bool validate : {false, true}) {
        fresh[validate].SetValidate(validate);
        freshOutcome[validate] = ReadString(fresh[validate], text, false);
        check(fresh[validate]);
        if (!fresh[validate].GetErrorString().startsWith(QStringLiteral("at line"))) {
            TorviGuiModeSettings partial;
            partial.SetValidate(validate);
            ReadPartially(partial, text);
            check(partial);
        }

        TorviGuiModeSettings reset = Preloaded(validate);
        CheckAllOrNothing(freshOutcome[validate], fresh[validate], ReadString(reset, text, true), reset,
                          Preloaded(validate));

        TorviGuiModeSettings loadedFresh;
        loadedFresh.SetValidate(validate);
        const Outcome loadedFreshOutcome = Load(loadedFresh, bytes);
        loaded[validate] = Preloaded(validate);
        loaded[validate].SetValidate(validate); // the assignment leaves the flag the target's
        loadOutcome[validate] = Load(loaded[validate], bytes);
        CheckAllOrNothing(loadedFreshOutcome, loadedFresh, loadOutcome[validate], loaded[validate],
                          Preloaded(validate));
        check(loaded[validate]);
    }
    CheckValidationOnlyRefuses(freshOutcome[0], fresh[0], freshOutcome[1], fresh[1]);
    CheckValidationOnlyRefuses(loadOutcome[0], loaded[0], loadOutcome[1], loaded[1]);

    if (freshOutcome[0] == Outcome{true, QString()}) {
        // Reading the same document again replaces the first read with an
        // equal one.
        TorviGuiModeSettings& object = fresh[0];
        const QByteArray first = StateKey(object);
        Require(ReadString(object, text, false) == Outcome{true, QString()},
                "a document that read once does not read twice");
        Require(StateKey(object) == first, "a second read of the same document gives another object");
    }
    return 0;
}
