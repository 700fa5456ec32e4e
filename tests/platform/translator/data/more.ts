<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en_US">
<context>
    <name>InputSource</name>
    <message>
        <source>Add</source>
        <comment>Widget</comment>
        <translation>添加来源（补充）</translation>
    </message>
    <message>
        <source>Rename</source>
        <comment>Widget</comment>
        <translation>重命名来源</translation>
    </message>
</context>
</TS>
