<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en_US">
<context>
    <name>InputSource</name>
    <message>
        <source>Add</source>
        <comment>Widget</comment>
        <translation>添加来源</translation>
    </message>
    <message>
        <source>Add</source>
        <comment>Menu</comment>
        <translation>添加…</translation>
    </message>
    <message>
        <source>Remove</source>
        <comment>Widget</comment>
        <translation>移除来源</translation>
    </message>
</context>
</TS>
