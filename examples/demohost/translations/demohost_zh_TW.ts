<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_TW" sourcelanguage="en_US">
<context>
    <name>DemoHost</name>
    <message>
        <source>InputSources</source>
        <comment>Window</comment>
        <translation>輸入來源</translation>
    </message>
    <message>
        <source>LoadWarningAbove</source>
        <comment>Window</comment>
        <translation>負載警告門檻</translation>
    </message>
    <message>
        <source>MessageCentre</source>
        <comment>Window</comment>
        <translation>訊息中心</translation>
    </message>
</context>
</TS>
