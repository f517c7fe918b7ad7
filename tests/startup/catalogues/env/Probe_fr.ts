<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR">
<context>
    <name>QObject</name>
    <message>
        <source>Hello</source>
        <translation>Bonjour (Umgebung)</translation>
    </message>
</context>
</TS>
