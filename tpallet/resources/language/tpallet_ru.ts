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
    <message>
        <source>Tray %1 was not stored on the controller, it will be lost at the next reload!</source>
        <translation>Паллета %1 не сохранена в контроллере и пропадёт при следующей загрузке!</translation>
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
<context>
    <name>ToolWizard</name>
    <message>
        <source>Load</source>
        <translation>Нагрузка</translation>
    </message>
    <message>
        <source>Mass (kg)</source>
        <translation>Масса (кг)</translation>
    </message>
    <message>
        <source>Cog X (mm)</source>
        <translation>ЦТ X (мм)</translation>
    </message>
    <message>
        <source>Cog Y (mm)</source>
        <translation>ЦТ Y (мм)</translation>
    </message>
    <message>
        <source>Cog Z (mm)</source>
        <translation>ЦТ Z (мм)</translation>
    </message>
    <message>
        <source>Inertia X (kg.mm²)</source>
        <translation>Инерция X (кг·мм²)</translation>
    </message>
    <message>
        <source>Inertia Y (kg.mm²)</source>
        <translation>Инерция Y (кг·мм²)</translation>
    </message>
    <message>
        <source>Inertia Z (kg.mm²)</source>
        <translation>Инерция Z (кг·мм²)</translation>
    </message>
    <message>
        <source>Translate</source>
        <translation>Смещение</translation>
    </message>
    <message>
        <source>X (mm)</source>
        <translation>X (мм)</translation>
    </message>
    <message>
        <source>Y (mm)</source>
        <translation>Y (мм)</translation>
    </message>
    <message>
        <source>Z (mm)</source>
        <translation>Z (мм)</translation>
    </message>
    <message>
        <source>Rotation</source>
        <translation>Поворот</translation>
    </message>
    <message>
        <source>Euler</source>
        <translation>Эйлер</translation>
    </message>
    <message>
        <source>Quaternion</source>
        <translation>Кватернион</translation>
    </message>
    <message>
        <source>A (°)</source>
        <translation>A (°)</translation>
    </message>
    <message>
        <source>B (°)</source>
        <translation>B (°)</translation>
    </message>
    <message>
        <source>C (°)</source>
        <translation>C (°)</translation>
    </message>
    <message>
        <source>Q1</source>
        <translation>Q1</translation>
    </message>
    <message>
        <source>Q2</source>
        <translation>Q2</translation>
    </message>
    <message>
        <source>Q3</source>
        <translation>Q3</translation>
    </message>
    <message>
        <source>Q4</source>
        <translation>Q4</translation>
    </message>
    <message>
        <source>VL Tool</source>
        <translation>Инструмент VL</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>Импорт</translation>
    </message>
    <message>
        <source>&lt;p&gt;1.You can edit the tool manually or import it from the VL project.&lt;/p&gt;&lt;p&gt;2.Only robot holding tool is supported to import.&lt;/p&gt;</source>
        <translation>&lt;p&gt;1.Инструмент можно задать вручную или импортировать из проекта VL.&lt;/p&gt;&lt;p&gt;2.Импортировать можно только инструмент, который держит робот.&lt;/p&gt;</translation>
    </message>
</context>
<context>
    <name>ToolWizard2</name>
    <message>
        <source>Load</source>
        <translation>Нагрузка</translation>
    </message>
    <message>
        <source>Mass (kg)</source>
        <translation>Масса (кг)</translation>
    </message>
    <message>
        <source>Cog X (mm)</source>
        <translation>ЦТ X (мм)</translation>
    </message>
    <message>
        <source>Cog Y (mm)</source>
        <translation>ЦТ Y (мм)</translation>
    </message>
    <message>
        <source>Cog Z (mm)</source>
        <translation>ЦТ Z (мм)</translation>
    </message>
    <message>
        <source>Inertia X (kg.mm²)</source>
        <translation>Инерция X (кг·мм²)</translation>
    </message>
    <message>
        <source>Inertia Y (kg.mm²)</source>
        <translation>Инерция Y (кг·мм²)</translation>
    </message>
    <message>
        <source>Inertia Z (kg.mm²)</source>
        <translation>Инерция Z (кг·мм²)</translation>
    </message>
    <message>
        <source>Translate</source>
        <translation>Смещение</translation>
    </message>
    <message>
        <source>X (mm)</source>
        <translation>X (мм)</translation>
    </message>
    <message>
        <source>Y (mm)</source>
        <translation>Y (мм)</translation>
    </message>
    <message>
        <source>Z (mm)</source>
        <translation>Z (мм)</translation>
    </message>
    <message>
        <source>Rotation</source>
        <translation>Поворот</translation>
    </message>
    <message>
        <source>Euler</source>
        <translation>Эйлер</translation>
    </message>
    <message>
        <source>Quaternion</source>
        <translation>Кватернион</translation>
    </message>
    <message>
        <source>A (°)</source>
        <translation>A (°)</translation>
    </message>
    <message>
        <source>B (°)</source>
        <translation>B (°)</translation>
    </message>
    <message>
        <source>C (°)</source>
        <translation>C (°)</translation>
    </message>
    <message>
        <source>Q1</source>
        <translation>Q1</translation>
    </message>
    <message>
        <source>Q2</source>
        <translation>Q2</translation>
    </message>
    <message>
        <source>Q3</source>
        <translation>Q3</translation>
    </message>
    <message>
        <source>Q4</source>
        <translation>Q4</translation>
    </message>
    <message>
        <source>VL Tool</source>
        <translation>Инструмент VL</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>Импорт</translation>
    </message>
    <message>
        <source>&lt;p&gt;1.You can edit the tool manually or import it from the VL project.&lt;/p&gt;&lt;p&gt;2.Only robot holding tool is supported to import.&lt;/p&gt;</source>
        <translation>&lt;p&gt;1.Инструмент можно задать вручную или импортировать из проекта VL.&lt;/p&gt;&lt;p&gt;2.Импортировать можно только инструмент, который держит робот.&lt;/p&gt;</translation>
    </message>
</context>
<context>
    <name>ToolStep</name>
    <message>
        <source>Tray tool will be replaced, are you sure to import?</source>
        <translation>Инструмент паллеты будет заменён. Импортировать?</translation>
    </message>
    <message>
        <source>Invalid tool: %1</source>
        <translation>Недопустимый инструмент: %1</translation>
    </message>
</context>
<context>
    <name>MoveToDialog</name>
    <message>
        <source>Move To</source>
        <translation>Перемещение к точке</translation>
    </message>
    <message>
        <source>Move Type</source>
        <translation>Тип движения</translation>
    </message>
    <message>
        <source>Move AbsJ</source>
        <translation>Move AbsJ</translation>
    </message>
    <message>
        <source>Move J</source>
        <translation>Move J</translation>
    </message>
    <message>
        <source>Move L</source>
        <translation>Move L</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Скорость</translation>
    </message>
    <message>
        <source>Point</source>
        <translation>Точка</translation>
    </message>
    <message>
        <source>Offset</source>
        <translation>Смещение</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Нет</translation>
    </message>
    <message>
        <source>Offs</source>
        <translation>Offs</translation>
    </message>
    <message>
        <source>Reltool</source>
        <translation>Reltool</translation>
    </message>
    <message>
        <source>XYZ(mm)</source>
        <translation>XYZ(мм)</translation>
    </message>
    <message>
        <source>ABC(°)</source>
        <translation>ABC(°)</translation>
    </message>
    <message>
        <source>Caution: Jog and Move will be effected according to selected coordinate system and payload.</source>
        <translation>Внимание: толчковое перемещение и движение выполняются в выбранной системе координат с выбранной нагрузкой.</translation>
    </message>
    <message>
        <source>Current</source>
        <translation>Текущее</translation>
    </message>
    <message>
        <source>Target</source>
        <translation>Цель</translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>Подтвердить</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Назад</translation>
    </message>
    <message>
        <source>Start Moving</source>
        <translation>Начать движение</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Закрыть</translation>
    </message>
    <message>
        <source>&lt;h2&gt;Move Robot into Position: %1 &lt;/h2&gt;</source>
        <translation>&lt;h2&gt;Перемещение робота в позицию: %1 &lt;/h2&gt;</translation>
    </message>
    <message>
        <source>J1(%1)</source>
        <translation>J1(%1)</translation>
    </message>
    <message>
        <source>J2(%1)</source>
        <translation>J2(%1)</translation>
    </message>
    <message>
        <source>J3(%1)</source>
        <translation>J3(%1)</translation>
    </message>
    <message>
        <source>J4(%1)</source>
        <translation>J4(%1)</translation>
    </message>
    <message>
        <source>J5(%1)</source>
        <translation>J5(%1)</translation>
    </message>
    <message>
        <source>J6(%1)</source>
        <translation>J6(%1)</translation>
    </message>
    <message>
        <source>J7(%1)</source>
        <translation>J7(%1)</translation>
    </message>
    <message>
        <source>X(mm)</source>
        <translation>X(мм)</translation>
    </message>
    <message>
        <source>Y(mm)</source>
        <translation>Y(мм)</translation>
    </message>
    <message>
        <source>Z(mm)</source>
        <translation>Z(мм)</translation>
    </message>
    <message>
        <source>A(%1)</source>
        <translation>A(%1)</translation>
    </message>
    <message>
        <source>B(%1)</source>
        <translation>B(%1)</translation>
    </message>
    <message>
        <source>C(%1)</source>
        <translation>C(%1)</translation>
    </message>
    <message>
        <source>The robot is power off!</source>
        <translation>Питание робота выключено!</translation>
    </message>
    <message>
        <source>Can not read the robot posture!</source>
        <translation>Не удалось прочитать положение робота!</translation>
    </message>
    <message>
        <source>Can not read the point %1 from the controller!</source>
        <translation>Не удалось прочитать точку %1 из контроллера!</translation>
    </message>
    <message>
        <source>The offset is out of range!</source>
        <translation>Смещение вне допустимого диапазона!</translation>
    </message>
    <message>
        <source>SDK Move Error</source>
        <translation>Ошибка движения SDK</translation>
    </message>
    <message>
        <source>The controller link is lost, the move is stopped!</source>
        <translation>Связь с контроллером потеряна, движение остановлено!</translation>
    </message>
</context>
<context>
    <name>CalibrateSetWizard</name>
    <message>
        <source> is too close to each other, are you sure to calibrate?</source>
        <translation> слишком близко друг к другу. Выполнить калибровку?</translation>
    </message>
    <message>
        <source>Accquire</source>
        <translation>Считать</translation>
    </message>
    <message>
        <source>Move To</source>
        <translation>Перейти</translation>
    </message>
    <message>
        <source>Calibrate</source>
        <translation>Калибровать</translation>
    </message>
    <message>
        <source>P1</source>
        <translation>P1</translation>
    </message>
    <message>
        <source>P2</source>
        <translation>P2</translation>
    </message>
    <message>
        <source>P3</source>
        <translation>P3</translation>
    </message>
    <message>
        <source>P4</source>
        <translation>P4</translation>
    </message>
    <message>
        <source>Pallet Frame</source>
        <translation>Система паллеты</translation>
    </message>
    <message>
        <source>Swithed to pallet wobj</source>
        <translation>Переключено на систему координат паллеты</translation>
    </message>
    <message>
        <source>Teach P1 at the origin corner, P2 along the pallet's X axis and P3 along its Y axis, as the picture shows.</source>
        <translation>Обучите P1 в исходном углу, P2 по оси X паллеты и P3 по оси Y, как показано на рисунке.</translation>
    </message>
    <message>
        <source>Use P4</source>
        <translation>Использовать P4</translation>
    </message>
    <message>
        <source>swith to pallet toolset failed</source>
        <translation>Не удалось переключиться на набор паллеты</translation>
    </message>
</context>
<context>
    <name>WayPointWizard</name>
    <message>
        <source>&lt;p&gt;1.Please grab the work object to the origin point when accquiring P5,P6,P7.&lt;/p&gt;&lt;p&gt;2.The other work object's coordinates will be caculated according to the reference point.&lt;/p&gt;</source>
        <translation>&lt;p&gt;1.При считывании P5, P6, P7 держите заготовку в исходной позиции.&lt;/p&gt;&lt;p&gt;2.Координаты остальных заготовок будут рассчитаны от опорной точки.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>Accquire</source>
        <translation>Считать</translation>
    </message>
    <message>
        <source>Move To</source>
        <translation>Перейти</translation>
    </message>
    <message>
        <source>Approach P5</source>
        <translation>Подход P5</translation>
    </message>
    <message>
        <source>Wobj P6</source>
        <translation>Укладка P6</translation>
    </message>
    <message>
        <source>Retract P7</source>
        <translation>Отход P7</translation>
    </message>
    <message>
        <source>Swithed to pallet wobj</source>
        <translation>Переключено на систему координат паллеты</translation>
    </message>
    <message>
        <source>swith to pallet wobj failed</source>
        <translation>Не удалось переключиться на систему координат паллеты</translation>
    </message>
</context>
<context>
    <name>PointAdjustWizard</name>
    <message>
        <source>Work Object Index</source>
        <translation>Номер места</translation>
    </message>
    <message>
        <source>Approach Point</source>
        <translation>Точка подхода</translation>
    </message>
    <message>
        <source>Wobj Point</source>
        <translation>Точка укладки</translation>
    </message>
    <message>
        <source>Retract Point</source>
        <translation>Точка отхода</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Сбросить</translation>
    </message>
    <message>
        <source>Check Access</source>
        <translation>Проверить досягаемость</translation>
    </message>
    <message>
        <source>Accquire</source>
        <translation>Считать</translation>
    </message>
    <message>
        <source>Move To</source>
        <translation>Перейти</translation>
    </message>
    <message>
        <source>Adjust</source>
        <translation>Изменить</translation>
    </message>
    <message>
        <source>Swithed to pallet wobj</source>
        <translation>Переключено на систему координат паллеты</translation>
    </message>
    <message>
        <source>swith to pallet wobj failed</source>
        <translation>Не удалось переключиться на систему координат паллеты</translation>
    </message>
    <message>
        <source>Are you sure to adjust Approach Point %1?</source>
        <translation>Изменить точку подхода места %1?</translation>
    </message>
    <message>
        <source>Are you sure to adjust Wobj Point %1?</source>
        <translation>Изменить точку укладки места %1?</translation>
    </message>
    <message>
        <source>Are you sure to adjust Retract Point %1?</source>
        <translation>Изменить точку отхода места %1?</translation>
    </message>
    <message>
        <source>Are you sure to adjust Point %1?</source>
        <translation>Изменить положение места %1?</translation>
    </message>
    <message>
        <source>Checking...</source>
        <translation>Проверка...</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Wobj %1 : P5 to P6</source>
        <translation>Место %1 : от P5 к P6</translation>
    </message>
    <message>
        <source>Wobj %1 : P6 to P7</source>
        <translation>Место %1 : от P6 к P7</translation>
    </message>
    <message>
        <source>The path below can not be reached:
%1</source>
        <translation>Следующие пути недостижимы:
%1</translation>
    </message>
    <message>
        <source>Check is passed!</source>
        <translation>Проверка пройдена!</translation>
    </message>
</context>
<context>
    <name>PreviewWizard</name>
    <message>
        <source>Form</source>
        <translation>Форма</translation>
    </message>
</context>
<context>
    <name>tFileDialog</name>
    <message>
        <source>Dialog</source>
        <translation>Диалог</translation>
    </message>
    <message>
        <source>FileName:</source>
        <translation>Имя файла:</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>ОК</translation>
    </message>
    <message>
        <source>please insert the USB disk</source>
        <translation>Вставьте USB-накопитель</translation>
    </message>
</context>
<context>
    <name>ImExportDialog</name>
    <message>
        <source>Import/Export</source>
        <translation>Импорт/экспорт</translation>
    </message>
    <message>
        <source>Select File</source>
        <translation>Выбор файла</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Открыть</translation>
    </message>
    <message>
        <source>Import Options</source>
        <translation>Параметры импорта</translation>
    </message>
    <message>
        <source>If have duplicate elements in the imported content, choose one of the following.The new element is renamed by default,you can also choose to override existing elements or not import new elements.</source>
        <translation>Если импортируемые данные содержат повторяющиеся элементы, выберите один из вариантов. По умолчанию новый элемент переименовывается; можно также заменить существующий элемент или не импортировать новый.</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>Переименовать</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>Заменить</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>Пропустить</translation>
    </message>
    <message>
        <source>Select Items</source>
        <translation>Выбор элементов</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Выбрать все</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Имя</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Описание</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>ОК</translation>
    </message>
    <message>
        <source>Open XML file</source>
        <translation>Открыть файл XML</translation>
    </message>
    <message>
        <source>XML (*.xml)</source>
        <translation>XML (*.xml)</translation>
    </message>
    <message>
        <source>Save XML file</source>
        <translation>Сохранить файл XML</translation>
    </message>
    <message>
        <source>The file %1 is too large (%2 MB); a pallet file has at most %3 MB.</source>
        <translation>Файл %1 слишком велик (%2 МБ); файл паллет не больше %3 МБ.</translation>
    </message>
    <message>
        <source>The file %1 cannot be read as a pallet file:
%2</source>
        <translation>Файл %1 не читается как файл паллет:
%2</translation>
    </message>
    <message>
        <source>The file %1 does not hold a list of pallets.</source>
        <translation>Файл %1 не содержит списка паллет.</translation>
    </message>
    <message>
        <source>The pallet %1 in the file %2 has a missing or wrong value at "%3". Nothing is imported from this file.</source>
        <translation>У паллеты %1 в файле %2 отсутствует или неверно значение «%3». Из этого файла ничего не импортируется.</translation>
    </message>
    <message>
        <source>The pallet name %1 is used twice in the file %2. Nothing is imported from this file.</source>
        <translation>Имя паллеты %1 встречается в файле %2 дважды. Из этого файла ничего не импортируется.</translation>
    </message>
    <message>
        <source>Import success!</source>
        <translation>Импорт выполнен!</translation>
    </message>
    <message>
        <source>Export path can not be empty!</source>
        <translation>Путь экспорта не может быть пустым!</translation>
    </message>
    <message>
        <source>The pallets could not be written to %1:
%2</source>
        <translation>Не удалось записать паллеты в %1:
%2</translation>
    </message>
    <message>
        <source>Export success to %1!</source>
        <translation>Экспорт в %1 выполнен!</translation>
    </message>
    <message>
        <source>Tray %1 was not stored on the controller, it will be lost at the next reload!</source>
        <translation>Паллета %1 не сохранена в контроллере и будет потеряна при следующей загрузке!</translation>
    </message>
</context>
</TS>