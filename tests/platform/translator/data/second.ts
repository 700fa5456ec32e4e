<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_TW" sourcelanguage="en_US">
<context>
    <name>InputSource</name>
    <message>
        <source>Add</source>
        <comment>Widget</comment>
        <translation>新增來源</translation>
    </message>
</context>
</TS>
