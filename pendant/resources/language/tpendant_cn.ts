<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>HostNodes</name>
    <message>
        <source>unknown tool</source>
        <translation>未知工具</translation>
    </message>
    <message>
        <source>stationary tools are not supported</source>
        <translation>不支持固定工具</translation>
    </message>
    <message>
        <source>Tool</source>
        <translation>工具</translation>
    </message>
    <message>
        <source>%1 / %2 not made active</source>
        <translation>%1 / %2 未能激活</translation>
    </message>
</context>
<context>
    <name>JogPanel</name>
    <message>
        <source>Continuous</source>
        <translation>连续</translation>
    </message>
    <message>
        <source>Jog</source>
        <translation>点动</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>坐标系</translation>
    </message>
    <message>
        <source>Step</source>
        <translation>步长</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>速度</translation>
    </message>
    <message>
        <source>Joint</source>
        <translation>关节</translation>
    </message>
    <message>
        <source>Base</source>
        <translation>基座</translation>
    </message>
    <message>
        <source>Tool</source>
        <translation>工具</translation>
    </message>
    <message>
        <source>No controller</source>
        <translation>未连接控制器</translation>
    </message>
    <message>
        <source>The controller did not answer</source>
        <translation>控制器无应答</translation>
    </message>
    <message>
        <source>The robot is powered off</source>
        <translation>机器人未上电</translation>
    </message>
    <message>
        <source>Edge of the workspace: the robot cannot go further this way</source>
        <translation>已到工作空间边缘：机器人无法继续朝此方向移动</translation>
    </message>
    <message>
        <source>Joint limit: the robot cannot go further this way</source>
        <translation>关节限位：机器人无法继续朝此方向移动</translation>
    </message>
    <message>
        <source>Singularity: the robot cannot go further this way</source>
        <translation>奇异点：机器人无法继续朝此方向移动</translation>
    </message>
    <message>
        <source>The arm would change its configuration: jog the joints instead</source>
        <translation>机械臂将改变构型：请改用关节点动</translation>
    </message>
    <message>
        <source>The robot is moving</source>
        <translation>机器人正在运动</translation>
    </message>
    <message>
        <source>Refused</source>
        <translation>被拒绝</translation>
    </message>
    <message>
        <source>Refused: %1</source>
        <translation>被拒绝：%1</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>No on-screen keyboard</source>
        <translation>无屏幕键盘</translation>
    </message>
    <message>
        <source>Jog</source>
        <translation>点动</translation>
    </message>
</context>
<context>
    <name>NavigationView</name>
    <message>
        <source>Robot</source>
        <translation>机器人</translation>
    </message>
    <message>
        <source>Pack</source>
        <translation>包装</translation>
    </message>
    <message>
        <source>Setting</source>
        <translation>设置</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>主页</translation>
    </message>
</context>
<context>
    <name>Shell</name>
    <message>
        <source>Module not loaded: %1</source>
        <translation>模块未加载：%1</translation>
    </message>
    <message>
        <source>USB folder not found</source>
        <translation>未找到 USB 文件夹</translation>
    </message>
    <message>
        <source>Controller disconnected</source>
        <translation>控制器已断开</translation>
    </message>
    <message>
        <source>Page not found</source>
        <translation>未找到页面</translation>
    </message>
    <message>
        <source>Controller not started</source>
        <translation>控制器未启动</translation>
    </message>
    <message>
        <source>No module directory</source>
        <translation>无模块目录</translation>
    </message>
    <message>
        <source>Module loaded</source>
        <translation>模块已加载</translation>
    </message>
    <message>
        <source>Controller connected</source>
        <translation>控制器已连接</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>工程</translation>
    </message>
    <message>
        <source>tool and work-object lists not read</source>
        <translation>未能读取工具和工件列表</translation>
    </message>
    <message>
        <source>none</source>
        <translation>无</translation>
    </message>
    <message>
        <source>built-in simulator</source>
        <translation>内置仿真器</translation>
    </message>
    <message>
        <source>Teach pendant</source>
        <translation>示教器</translation>
    </message>
    <message>
        <source>Controller:</source>
        <translation>控制器：</translation>
    </message>
    <message>
        <source>connected</source>
        <translation>已连接</translation>
    </message>
    <message>
        <source>not connected</source>
        <translation>未连接</translation>
    </message>
    <message>
        <source>Controller data:</source>
        <translation>控制器数据：</translation>
    </message>
    <message>
        <source>Modules:</source>
        <translation>模块：</translation>
    </message>
    <message>
        <source>none found</source>
        <translation>未找到</translation>
    </message>
</context>
<context>
    <name>StatusBar</name>
    <message>
        <source>Level %1</source>
        <translation>等级 %1</translation>
    </message>
    <message>
        <source>none</source>
        <translation>无</translation>
    </message>
    <message>
        <source>built-in simulator</source>
        <translation>内置仿真器</translation>
    </message>
    <message>
        <source>● Controller: %1</source>
        <translation>● 控制器：%1</translation>
    </message>
    <message>
        <source>○ No controller (%1)</source>
        <translation>○ 未连接控制器（%1）</translation>
    </message>
    <message>
        <source>Power ?</source>
        <translation>电源 ?</translation>
    </message>
    <message>
        <source>Power ON</source>
        <translation>电源 开</translation>
    </message>
    <message>
        <source>Power OFF</source>
        <translation>电源 关</translation>
    </message>
</context>
<context>
    <name>VirtualKeyboard</name>
    <message>
        <source>Qt's virtual keyboard is not the input method (QT_IM_MODULE).</source>
        <translation>输入法不是 Qt 虚拟键盘（QT_IM_MODULE）。</translation>
    </message>
    <message>
        <source>The keyboard did not load.</source>
        <translation>键盘未能加载。</translation>
    </message>
    <message>
        <source>This build has no on-screen keyboard (Qt Quick was not found).</source>
        <translation>此版本没有屏幕键盘（未找到 Qt Quick）。</translation>
    </message>
</context>
<context>
    <name>tcore::ManagerHelper</name>
    <message>
        <source>Question</source>
        <translation>询问</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>信息</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
</TS>
