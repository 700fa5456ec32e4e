<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en_US">
<context>
    <name>DemoHost</name>
    <message>
        <source>InputSources</source>
        <comment>Window</comment>
        <translation>输入源</translation>
    </message>
    <message>
        <source>LoadWarningAbove</source>
        <comment>Window</comment>
        <translation>负载警告阈值</translation>
    </message>
    <message>
        <source>MessageCentre</source>
        <comment>Window</comment>
        <translation>消息中心</translation>
    </message>
</context>
</TS>
