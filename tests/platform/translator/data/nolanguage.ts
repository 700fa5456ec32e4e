<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>InputSource</name>
    <message>
        <source>Add</source>
        <comment>Widget</comment>
        <translation>Add without a language</translation>
    </message>
</context>
</TS>
