<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>TORVIXML::Editor::EditorWindow</name>
    <message>
        <source>Preview of the selected mode</source>
        <translation>Vorschau des gewählten Modus</translation>
    </message>
    <message>
        <source>Ready</source>
        <translation>Bereit</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Open...</source>
        <translation>Ö&amp;ffnen …</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <source>Save &amp;As...</source>
        <translation>Speichern &amp;unter …</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>Add &amp;mode...</source>
        <translation>&amp;Modus hinzufügen …</translation>
    </message>
    <message>
        <source>Add &amp;component...</source>
        <translation>&amp;Komponente hinzufügen …</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>&amp;Validate</source>
        <translation>&amp;Prüfen</translation>
    </message>
    <message>
        <source>Refuse what the library refuses in validation mode</source>
        <translation>Ablehnen, was die Bibliothek im Prüfmodus ablehnt</translation>
    </message>
    <message>
        <source>Main</source>
        <translation>Haupt</translation>
    </message>
    <message>
        <source>%1 was not opened: %2</source>
        <translation>%1 wurde nicht geöffnet: %2</translation>
    </message>
    <message>
        <source>Opened %1</source>
        <translation>%1 geöffnet</translation>
    </message>
    <message>
        <source>%1 was not saved: %2</source>
        <translation>%1 wurde nicht gespeichert: %2</translation>
    </message>
    <message>
        <source>Saved %1</source>
        <translation>%1 gespeichert</translation>
    </message>
    <message>
        <source>Open settings</source>
        <translation>Einstellungen öffnen</translation>
    </message>
    <message>
        <source>Settings documents (*.xml *.bin);;All files (*)</source>
        <translation>Einstellungsdokumente (*.xml *.bin);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>XML document (*.xml)</source>
        <translation>XML-Dokument (*.xml)</translation>
    </message>
    <message>
        <source>Binary document (*.bin)</source>
        <translation>Binärdokument (*.bin)</translation>
    </message>
    <message>
        <source>Compressed binary document (*.bin)</source>
        <translation>Komprimiertes Binärdokument (*.bin)</translation>
    </message>
    <message>
        <source>Save settings as</source>
        <translation>Einstellungen speichern unter</translation>
    </message>
    <message>
        <source>Add mode</source>
        <translation>Modus hinzufügen</translation>
    </message>
    <message>
        <source>Name of the new mode:</source>
        <translation>Name des neuen Modus:</translation>
    </message>
    <message>
        <source>Add component</source>
        <translation>Komponente hinzufügen</translation>
    </message>
    <message>
        <source>Name of the new component:</source>
        <translation>Name der neuen Komponente:</translation>
    </message>
    <message>
        <source>Unsaved changes</source>
        <translation>Ungespeicherte Änderungen</translation>
    </message>
    <message>
        <source>The settings have been changed. Save the changes?</source>
        <translation>Die Einstellungen wurden geändert. Änderungen speichern?</translation>
    </message>
    <message>
        <source>Select a mode to see its main window.</source>
        <translation>Einen Modus wählen, um sein Hauptfenster zu sehen.</translation>
    </message>
    <message>
        <source>Untitled</source>
        <translation>Unbenannt</translation>
    </message>
    <message>
        <source>%1[*] - TorviXML Editor</source>
        <translation>%1[*] – TorviXML-Editor</translation>
    </message>
</context>
<context>
    <name>TORVIXML::Editor::SettingsDocument</name>
    <message>
        <source>The file is larger than any settings document (%1 bytes).</source>
        <translation>Die Datei ist größer als jedes Einstellungsdokument (%1 Bytes).</translation>
    </message>
    <message>
        <source>This is not a settings document in XML form.</source>
        <translation>Dies ist kein Einstellungsdokument in XML-Form.</translation>
    </message>
    <message>
        <source>This is not a settings document in binary form.</source>
        <translation>Dies ist kein Einstellungsdokument in Binärform.</translation>
    </message>
</context>
</TS>
