<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>DemoHost</name>
    <message>
        <source>InputSources</source>
        <comment>Window</comment>
        <translation>Input sources</translation>
    </message>
    <message>
        <source>LoadWarningAbove</source>
        <comment>Window</comment>
        <translation>Load warning above</translation>
    </message>
    <message>
        <source>MessageCentre</source>
        <comment>Window</comment>
        <translation>Message centre</translation>
    </message>
    <message>
        <source>WindowTitle</source>
        <comment>Window</comment>
        <translation>Input sources demo host</translation>
    </message>
    <message>
        <source>Toolbar</source>
        <comment>Window</comment>
        <translation>Toolbar</translation>
    </message>
    <message>
        <source>Language</source>
        <comment>Window</comment>
        <translation>Language</translation>
    </message>
    <message>
        <source>SourceStatus</source>
        <comment>Window</comment>
        <translation>Sources and frames</translation>
    </message>
    <message>
        <source>StatusLine</source>
        <comment>Window</comment>
        <translation>%1 sources  ·  %2 previewed  ·  %3 frames/s</translation>
    </message>
    <message>
        <source>MessageHint</source>
        <comment>Window</comment>
        <translation>Double-click a message, or press Enter on it, to run its action</translation>
    </message>
    <message>
        <source>ProgramMenu</source>
        <comment>Window</comment>
        <translation>&amp;Program</translation>
    </message>
    <message>
        <source>PutOnProgram</source>
        <comment>Window</comment>
        <translation>Put selected source on program</translation>
    </message>
    <message>
        <source>TakeOffProgram</source>
        <comment>Window</comment>
        <translation>Take source off program</translation>
    </message>
    <message>
        <source>ViewMenu</source>
        <comment>Window</comment>
        <translation>&amp;View</translation>
    </message>
    <message>
        <source>LibraryStatus</source>
        <comment>Window</comment>
        <translation>vexainputsourcewidget %1   |   window capture (WGC) %2</translation>
    </message>
    <message>
        <source>Available</source>
        <comment>Window</comment>
        <translation>available</translation>
    </message>
    <message>
        <source>NotAvailable</source>
        <comment>Window</comment>
        <translation>not available on this system</translation>
    </message>
    <message>
        <source>NoSourceSelected</source>
        <comment>Window</comment>
        <translation>Select a source in the panel first</translation>
    </message>
    <message>
        <source>ProgramMonitor</source>
        <comment>Window</comment>
        <translation>Program monitor</translation>
    </message>
    <message>
        <source>ProgramHint</source>
        <comment>Window</comment>
        <translation>Drag a source here, or select one and press Ctrl+Enter, to put it on program</translation>
    </message>
    <message>
        <source>ProgramCaption</source>
        <comment>Window</comment>
        <translation>On program: %1</translation>
    </message>
    <message>
        <source>FloatDock</source>
        <comment>Window</comment>
        <translation>Float</translation>
    </message>
    <message>
        <source>CloseDock</source>
        <comment>Window</comment>
        <translation>Close</translation>
    </message>
</context>
</TS>
