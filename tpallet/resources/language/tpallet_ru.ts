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
<context>
    <name>PalletSetDialog</name>
    <message>
        <source>Pallet Setting</source>
        <translation>Настройка паллеты</translation>
    </message>
    <message>
        <source>Tool</source>
        <translation>Инструмент</translation>
    </message>
    <message>
        <source>Wobj</source>
        <translation>Заготовка</translation>
    </message>
    <message>
        <source>Toolset</source>
        <translation>Набор</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>Назад</translation>
    </message>
    <message>
        <source>Next Step</source>
        <translation>Далее</translation>
    </message>
    <message>
        <source>Finish</source>
        <translation>Готово</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>Принять</translation>
    </message>
    <message>
        <source>Current Pallet: </source>
        <translation>Паллета: </translation>
    </message>
    <message>
        <source>Pattern Setting</source>
        <translation>Схема</translation>
    </message>
    <message>
        <source>Tool Setting</source>
        <translation>Инструмент</translation>
    </message>
    <message>
        <source>Calibrate Setting</source>
        <translation>Калибровка</translation>
    </message>
    <message>
        <source>Path Point Setting</source>
        <translation>Точки пути</translation>
    </message>
    <message>
        <source>Path Point Check</source>
        <translation>Проверка точек</translation>
    </message>
    <message>
        <source>Use Project Tool/Wobj</source>
        <translation>Инструмент/заготовка проекта</translation>
    </message>
</context>
<context>
    <name>PatternWizard</name>
    <message>
        <source>Order</source>
        <translation>Порядок</translation>
    </message>
    <message>
        <source>Parallel</source>
        <translation>Параллельно</translation>
    </message>
    <message>
        <source>S-Type</source>
        <translation>Змейкой</translation>
    </message>
    <message>
        <source>Ranking</source>
        <translation>Направление</translation>
    </message>
    <message>
        <source>Total:</source>
        <translation>Всего:</translation>
    </message>
    <message>
        <source>Tap a corner of the pallet to make it position 1.</source>
        <translation>Нажмите на угол паллеты, чтобы сделать его позицией 1.</translation>
    </message>
</context>
<context>
    <name>PatternWidget</name>
    <message>
        <source>Column</source>
        <translation>Столбцы</translation>
    </message>
    <message>
        <source>Row</source>
        <translation>Строки</translation>
    </message>
</context>
<context>
    <name>TWMenu</name>
    <message>
        <source>Form</source>
        <translation>Форма</translation>
    </message>
</context>
</TS>