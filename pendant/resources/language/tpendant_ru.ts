<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>HostNodes</name>
    <message>
        <source>unknown tool</source>
        <translation>неизвестный инструмент</translation>
    </message>
    <message>
        <source>stationary tools are not supported</source>
        <translation>стационарные инструменты не поддерживаются</translation>
    </message>
    <message>
        <source>Tool</source>
        <translation>Инструмент</translation>
    </message>
    <message>
        <source>%1 / %2 not made active</source>
        <translation>%1 / %2 не активированы</translation>
    </message>
</context>
<context>
    <name>JogPanel</name>
    <message>
        <source>Continuous</source>
        <translation>Непрерывно</translation>
    </message>
    <message>
        <source>Jog</source>
        <translation>Перемещение</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>Система</translation>
    </message>
    <message>
        <source>Step</source>
        <translation>Шаг</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Скорость</translation>
    </message>
    <message>
        <source>Joint</source>
        <translation>Оси</translation>
    </message>
    <message>
        <source>Base</source>
        <translation>База</translation>
    </message>
    <message>
        <source>Tool</source>
        <translation>Инструмент</translation>
    </message>
    <message>
        <source>No controller</source>
        <translation>Нет контроллера</translation>
    </message>
    <message>
        <source>The controller did not answer</source>
        <translation>Контроллер не ответил</translation>
    </message>
    <message>
        <source>The robot is powered off</source>
        <translation>Робот выключен</translation>
    </message>
    <message>
        <source>Edge of the workspace: the robot cannot go further this way</source>
        <translation>Граница рабочей зоны: дальше в эту сторону робот не пройдёт</translation>
    </message>
    <message>
        <source>Joint limit: the robot cannot go further this way</source>
        <translation>Предел оси: дальше в эту сторону робот не пройдёт</translation>
    </message>
    <message>
        <source>Singularity: the robot cannot go further this way</source>
        <translation>Сингулярность: дальше в эту сторону робот не пройдёт</translation>
    </message>
    <message>
        <source>The arm would change its configuration: jog the joints instead</source>
        <translation>Рука сменила бы конфигурацию: двигайте по осям</translation>
    </message>
    <message>
        <source>The robot is moving</source>
        <translation>Робот движется</translation>
    </message>
    <message>
        <source>Refused</source>
        <translation>Отклонено</translation>
    </message>
    <message>
        <source>Refused: %1</source>
        <translation>Отклонено: %1</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>No on-screen keyboard</source>
        <translation>Нет экранной клавиатуры</translation>
    </message>
    <message>
        <source>Jog</source>
        <translation>Перемещение</translation>
    </message>
</context>
<context>
    <name>NavigationView</name>
    <message>
        <source>Robot</source>
        <translation>Робот</translation>
    </message>
    <message>
        <source>Pack</source>
        <translation>Упаковка</translation>
    </message>
    <message>
        <source>Setting</source>
        <translation>Настройки</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>Главная</translation>
    </message>
</context>
<context>
    <name>Shell</name>
    <message>
        <source>Module not loaded: %1</source>
        <translation>Модуль не загружен: %1</translation>
    </message>
    <message>
        <source>USB folder not found</source>
        <translation>Папка USB не найдена</translation>
    </message>
    <message>
        <source>Controller disconnected</source>
        <translation>Контроллер отключён</translation>
    </message>
    <message>
        <source>Page not found</source>
        <translation>Страница не найдена</translation>
    </message>
    <message>
        <source>Controller not started</source>
        <translation>Контроллер не запущен</translation>
    </message>
    <message>
        <source>No module directory</source>
        <translation>Нет папки модулей</translation>
    </message>
    <message>
        <source>Module loaded</source>
        <translation>Модуль загружен</translation>
    </message>
    <message>
        <source>Controller connected</source>
        <translation>Контроллер подключён</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Проект</translation>
    </message>
    <message>
        <source>tool and work-object lists not read</source>
        <translation>списки инструментов и заготовок не прочитаны</translation>
    </message>
    <message>
        <source>none</source>
        <translation>нет</translation>
    </message>
    <message>
        <source>built-in simulator</source>
        <translation>встроенный симулятор</translation>
    </message>
    <message>
        <source>Teach pendant</source>
        <translation>Пульт обучения</translation>
    </message>
    <message>
        <source>Controller:</source>
        <translation>Контроллер:</translation>
    </message>
    <message>
        <source>connected</source>
        <translation>подключён</translation>
    </message>
    <message>
        <source>not connected</source>
        <translation>не подключён</translation>
    </message>
    <message>
        <source>Controller data:</source>
        <translation>Данные контроллера:</translation>
    </message>
    <message>
        <source>Modules:</source>
        <translation>Модули:</translation>
    </message>
    <message>
        <source>none found</source>
        <translation>не найдены</translation>
    </message>
</context>
<context>
    <name>StatusBar</name>
    <message>
        <source>Level %1</source>
        <translation>Уровень %1</translation>
    </message>
    <message>
        <source>none</source>
        <translation>нет</translation>
    </message>
    <message>
        <source>built-in simulator</source>
        <translation>встроенный симулятор</translation>
    </message>
    <message>
        <source>● Controller: %1</source>
        <translation>● Контроллер: %1</translation>
    </message>
    <message>
        <source>○ No controller (%1)</source>
        <translation>○ Нет контроллера (%1)</translation>
    </message>
    <message>
        <source>Power ?</source>
        <translation>Питание ?</translation>
    </message>
    <message>
        <source>Power ON</source>
        <translation>Питание ВКЛ</translation>
    </message>
    <message>
        <source>Power OFF</source>
        <translation>Питание ВЫКЛ</translation>
    </message>
</context>
<context>
    <name>VirtualKeyboard</name>
    <message>
        <source>Qt's virtual keyboard is not the input method (QT_IM_MODULE).</source>
        <translation>Метод ввода — не виртуальная клавиатура Qt (QT_IM_MODULE).</translation>
    </message>
    <message>
        <source>The keyboard did not load.</source>
        <translation>Клавиатура не загрузилась.</translation>
    </message>
    <message>
        <source>This build has no on-screen keyboard (Qt Quick was not found).</source>
        <translation>В этой сборке нет экранной клавиатуры (Qt Quick не найден).</translation>
    </message>
</context>
<context>
    <name>tcore::ManagerHelper</name>
    <message>
        <source>Question</source>
        <translation>Вопрос</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Предупреждение</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Ошибка</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>Информация</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>ОК</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
</context>
</TS>
