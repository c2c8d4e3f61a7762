<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>NewPalletDialog</name>
    <message>
        <source>Pallet</source>
        <translation>Паллета</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Имя</translation>
    </message>
    <message>
        <source>Desc</source>
        <translation>Описание</translation>
    </message>
    <message>
        <source>Row</source>
        <translation>Ряды</translation>
    </message>
    <message>
        <source>Column</source>
        <translation>Столбцы</translation>
    </message>
    <message>
        <source>Clone</source>
        <translation>Копировать из</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>ОК</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Tray name is empty!</source>
        <translation>Имя паллеты пустое!</translation>
    </message>
    <message>
        <source>Tray name length is be greater than 32!</source>
        <translation>Имя паллеты длиннее 32 символов!</translation>
    </message>
    <message>
        <source>Tray name is repeated!</source>
        <translation>Паллета с таким именем уже есть!</translation>
    </message>
    <message>
        <source>Total wobj number can not be greater than %1!</source>
        <translation>Общее число мест не может превышать %1!</translation>
    </message>
</context>
<context>
    <name>PalletPage</name>
    <message>
        <source>Name</source>
        <translation>Имя</translation>
    </message>
    <message>
        <source>Total</source>
        <translation>Всего</translation>
    </message>
    <message>
        <source>Row</source>
        <translation>Ряды</translation>
    </message>
    <message>
        <source>Column</source>
        <translation>Столбцы</translation>
    </message>
    <message>
        <source>Desc</source>
        <translation>Описание</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>Импорт</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Экспорт</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Добавить</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Изменить</translation>
    </message>
    <message>
        <source>Configure</source>
        <translation>Настроить</translation>
    </message>
    <message>
        <source>Point Check</source>
        <translation>Проверка точек</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Удалить</translation>
    </message>
    <message>
        <source>Tray</source>
        <translation>Паллетирование</translation>
    </message>
    <message>
        <source>Acquiring pallet data...</source>
        <translation>Получение данных паллет...</translation>
    </message>
    <message>
        <source>Please select a pallet!</source>
        <translation>Выберите паллету!</translation>
    </message>
    <message>
        <source>Are you sure to delete %1</source>
        <translation>Удалить %1?</translation>
    </message>
</context>
<context>
    <name>TPallet</name>
    <message>
        <source>Tray</source>
        <translation>Паллетирование</translation>
    </message>
    <message>
        <source>pallet</source>
        <translation>паллета</translation>
    </message>
</context>
<context>
    <name>tpallet</name>
    <message>
        <source>The way points have regenerated!</source>
        <translation>Путевые точки пересчитаны!</translation>
    </message>
    <message>
        <source>The pallet's width or height is too small, it may not be calibrated!</source>
        <translation>Ширина или высота паллеты слишком мала, возможно, она не откалибрована!</translation>
    </message>
</context>
</TS>