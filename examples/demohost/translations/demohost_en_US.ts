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
</context>
</TS>
