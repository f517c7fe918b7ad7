// libFuzzer target: whole-document XML reading of a TorviGuiModeSettings.
//
// The input is read through SetXmlString (decoded as UTF-8 first) with
// validation off and on, into a fresh object and, with resetFirst, into one
// that already holds a tree; and as raw bytes through LoadXml(QFile*) from a
// memory-backed file, so that the XML reader's own encoding detection and
// decoding (declarations, byte order marks, invalid UTF-8) are exercised.
// A second SetXmlString on an object that already holds the first read
// checks that reading appends behind existing elements.
// Every object read, also after false or an exception, goes through the
// oracles of FuzzSupport.h; besides, validation mode may only add refusals,
// and a read that resets first must end like a read into a fresh object.

#include "FuzzSupport.h"

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

        TorviGuiModeSettings reset = Preloaded(validate);
        CheckResetFirst(freshOutcome[validate], fresh[validate], ReadString(reset, text, true), reset);

        loaded[validate] = Preloaded(validate);
        loadOutcome[validate] = Load(loaded[validate], bytes);
        check(loaded[validate]);
    }
    CheckValidationOnlyRefuses(freshOutcome[0], fresh[0], freshOutcome[1], fresh[1]);
    CheckValidationOnlyRefuses(loadOutcome[0], loaded[0], loadOutcome[1], loaded[1]);

    if (freshOutcome[0] == Outcome{true, QString()}) {
        // Reading the same document again appends its modes behind the
        // first ones; the list doubles, the handler stays.
        TorviGuiModeSettings& object = fresh[0];
        const int modes = object.GetDataOperationMode().size();
        const bool handlerSet = object.IsOperationModeHandlerSet();
        const auto handler = object.GetOperationModeHandler();
        Require(ReadString(object, text, false) == Outcome{true, QString()},
                "a document that read once does not read twice");
        Require(object.GetDataOperationMode().size() == 2 * modes, "second read did not append");
        Require(object.IsOperationModeHandlerSet() == handlerSet && object.GetOperationModeHandler() == handler,
                "second read changed the handler");
    }
    return 0;
}
