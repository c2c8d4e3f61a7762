<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>TestManagerHelper</name>
    <message>
        <source>Hello</source>
        <translation>Ni hao</translation>
    </message>
</context>
</TS>
