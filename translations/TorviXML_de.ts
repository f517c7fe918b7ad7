<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>QObject</name>
    <message>
        <source>TX470ManagementComponent</source>
        <translation>TX470-Verwaltungskomponente</translation>
    </message>
    <message>
        <source>PMR830ManagementComponent</source>
        <translation>PMR830-Verwaltungskomponente</translation>
    </message>
    <message>
        <source>QLSManagementComponent</source>
        <translation>QLS-Verwaltungskomponente</translation>
    </message>
    <message>
        <source>VbkManagementComponent</source>
        <translation>Vbk-Verwaltungskomponente</translation>
    </message>
    <message>
        <source>AVAILABLE</source>
        <translation>Verfügbar</translation>
    </message>
    <message>
        <source>DEFAULT_DISPLAY</source>
        <translation>Standardanzeige</translation>
    </message>
    <message>
        <source>LeftDockWidgetArea</source>
        <translation>Linker Andockbereich</translation>
    </message>
    <message>
        <source>RightDockWidgetArea</source>
        <translation>Rechter Andockbereich</translation>
    </message>
    <message>
        <source>TopDockWidgetArea</source>
        <translation>Oberer Andockbereich</translation>
    </message>
    <message>
        <source>BottomDockWidgetArea</source>
        <translation>Unterer Andockbereich</translation>
    </message>
    <message>
        <source>CenterDockWidgetArea</source>
        <translation>Mittlerer Andockbereich</translation>
    </message>
    <message>
        <source>FloatingDockWidgetArea </source>
        <translation>Schwebendes Fenster</translation>
    </message>
    <message>
        <source>NoDockWidgetArea</source>
        <translation>Kein Andockbereich</translation>
    </message>
</context>
</TS>
