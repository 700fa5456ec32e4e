<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR" sourcelanguage="en_US">
<dependencies>
    <dependency catalog="base_fr"/>
</dependencies>
<context>
    <name>InputSource</name>
    <message>
        <source>Add</source>
        <comment>Widget</comment>
        <translation>Ajouter une source</translation>
    </message>
</context>
</TS>
