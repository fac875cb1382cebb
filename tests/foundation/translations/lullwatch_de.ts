<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>Monitor</name>
    <message><source>org.example.power</source><translation>Strom</translation></message>
</context>
</TS>
