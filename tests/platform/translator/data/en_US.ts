<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>InputSource</name>
    <message>
        <source>Add</source>
        <comment>Widget</comment>
        <translation>Add source</translation>
    </message>
    <message>
        <source>Add</source>
        <comment>Menu</comment>
        <translation>Add…</translation>
    </message>
    <message>
        <source>Remove</source>
        <comment>Widget</comment>
        <translation>Remove source</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close panel</translation>
    </message>
</context>
</TS>
