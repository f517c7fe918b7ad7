#include "SettingsDocument.h"

#include <TorviXML/TorviXML.h>

#include <QCoreApplication>
#include <QFile>
#include <QSaveFile>
#include <QtEndian>

namespace TORVIXML {
namespace Editor {

namespace {

// Settings documents are small; a larger file is not read into memory.
constexpr qint64 maximumDocumentSize = 64 * 1024 * 1024;

QString tr(const char* text)
{
    return QCoreApplication::translate("TORVIXML::Editor::SettingsDocument", text);
}

DocumentForm formOf(const QByteArray& start)
{
    int i = start.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    while (i < start.size() && (start[i] == ' ' || start[i] == '\t' || start[i] == '\n' || start[i] == '\r'))
        ++i;
    if (i < start.size() && start[i] == '<')
        return DocumentForm::Xml;
    if (start.size() >= 4 && qFromBigEndian<qint32>(start.constData()) == qint32(TorviGuiModeSettings::id))
        return DocumentForm::Binary;
    return DocumentForm::CompressedBinary;
}

} // namespace

bool loadDocument(const QString& path, bool validate, TorviGuiModeSettings& settings, DocumentForm& form,
                  QString& message)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        message = file.errorString();
        return false;
    }
    if (file.size() > maximumDocumentSize) {
        message = tr("The file is larger than any settings document (%1 bytes).").arg(file.size());
        return false;
    }
    const DocumentForm found = formOf(file.peek(256));
    TorviGuiModeSettings read;
    read.SetValidate(validate);
    bool ok = false;
    try {
        ok = found == DocumentForm::Xml ? read.LoadXml(&file) : read.LoadBinary(&file);
    } catch (const RGException& e) {
        message = e.GetMessageText();
        return false;
    }
    if (!ok) {
        message = found == DocumentForm::Xml ? tr("This is not a settings document in XML form.")
                                             : tr("This is not a settings document in binary form.");
        return false;
    }
    settings = read;
    settings.SetValidate(validate);
    form = found;
    return true;
}

bool saveDocument(const QString& path, DocumentForm form, const TorviGuiModeSettings& settings,
                  QString& message)
{
    // The whole document is made before the file is touched; a refusal of
    // the library (validation mode) leaves the file as it was.
    QByteArray bytes;
    try {
        switch (form) {
        case DocumentForm::Xml:
            bytes = settings.GetXmlString().toUtf8();
            break;
        case DocumentForm::Binary:
            bytes = settings.GetBinaryRepresentationAsQByteArray();
            break;
        case DocumentForm::CompressedBinary:
            bytes = settings.GetCompressedBinaryRepresentationAsQByteArray(-1);
            break;
        }
    } catch (const RGException& e) {
        message = e.GetMessageText();
        return false;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        message = file.errorString();
        file.cancelWriting();
        return false;
    }
    return true;
}

} // namespace Editor
} // namespace TORVIXML
