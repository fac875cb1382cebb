<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name>Monitor</name>
    <message><source>org.example.power</source><translation>Power</translation></message>
    <message><source>org.example.lid</source><translation>Lid</translation></message>
</context>
<context>
    <name>General</name>
    <message><source>org.example.power</source><translation>Something else</translation></message>
</context>
</TS>
