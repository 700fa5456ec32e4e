<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR" sourcelanguage="en_US">
<context>
    <name>InputSource</name>
    <message>
        <source>Add</source>
        <comment>Widget</comment>
        <translation>Ajouter une source</translation>
    </message>
    <message>
        <source>Add</source>
        <comment>Menu</comment>
        <translation>Ajouter…</translation>
    </message>
    <message>
        <source>Cancel</source>
        <comment>Widget</comment>
        <translation></translation>
    </message>
    <message numerus="yes">
        <source>%n sources</source>
        <comment>Widget</comment>
        <translation>
            <numerusform>%n source</numerusform>
            <numerusform>%n sources</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>OtherScope</name>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
</context>
</TS>
