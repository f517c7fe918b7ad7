#ifndef TORVIXML_EDITOR_SETTINGSDOCUMENT_H
#define TORVIXML_EDITOR_SETTINGSDOCUMENT_H

// Reading and writing settings documents in the three stored forms, for the
// editor: the form is told from the content when reading and kept for
// saving.

#include <QString>

namespace TORVIXML {
class TorviGuiModeSettings;

namespace Editor {

enum class DocumentForm { Xml, Binary, CompressedBinary };

/// Reads the document in path into settings, with the given validation
/// flag. XML when the content starts with '<' (after a byte order mark and
/// blanks), a plain binary document when it starts with the root's class id,
/// a compressed one otherwise. On failure returns false with a message (the
/// library's own text when it threw) and leaves settings and form as they
/// were.
bool loadDocument(const QString& path, bool validate, TorviGuiModeSettings& settings, DocumentForm& form,
                  QString& message);

/// Writes settings to path in the form given, atomically: the file is
/// replaced only when the whole document was written. On failure returns
/// false with a message (the library's own text when it threw).
bool saveDocument(const QString& path, DocumentForm form, const TorviGuiModeSettings& settings,
                  QString& message);

} // namespace Editor
} // namespace TORVIXML

#endif
