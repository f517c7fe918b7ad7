<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>TORVIXML::SettingsModel</name>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Usage</source>
        <translation>Verwendung</translation>
    </message>
    <message>
        <source>Dock area</source>
        <translation>Andockbereich</translation>
    </message>
    <message>
        <source>Operation mode handler</source>
        <translation>Betriebsmodus-Verwaltung</translation>
    </message>
</context>
</TS>
