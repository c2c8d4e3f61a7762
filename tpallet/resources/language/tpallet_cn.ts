<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>NewPalletDialog</name>
    <message>
        <source>Pallet</source>
        <translation>托盘</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>Desc</source>
        <translation>描述</translation>
    </message>
    <message>
        <source>Row</source>
        <translation>行</translation>
    </message>
    <message>
        <source>Column</source>
        <translation>列</translation>
    </message>
    <message>
        <source>Clone</source>
        <translation>克隆</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Tray name is empty!</source>
        <translation>托盘名称为空！</translation>
    </message>
    <message>
        <source>Tray name length is be greater than 32!</source>
        <translation>托盘名称长度不能大于32！</translation>
    </message>
    <message>
        <source>Tray name is repeated!</source>
        <translation>托盘名称重复！</translation>
    </message>
    <message>
        <source>Total wobj number can not be greater than %1!</source>
        <translation>工件总数不能大于%1！</translation>
    </message>
    <message>
        <source>Tray %1 was not stored on the controller, it will be lost at the next reload!</source>
        <translation>托盘 %1 未保存到控制器，下次重新加载时将丢失！</translation>
    </message>
</context>
<context>
    <name>PalletPage</name>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>Total</source>
        <translation>总数</translation>
    </message>
    <message>
        <source>Row</source>
        <translation>行</translation>
    </message>
    <message>
        <source>Column</source>
        <translation>列</translation>
    </message>
    <message>
        <source>Desc</source>
        <translation>描述</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>导入</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>导出</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>添加</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>编辑</translation>
    </message>
    <message>
        <source>Configure</source>
        <translation>配置</translation>
    </message>
    <message>
        <source>Point Check</source>
        <translation>点位检查</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Tray</source>
        <translation>码垛</translation>
    </message>
    <message>
        <source>Acquiring pallet data...</source>
        <translation>正在获取托盘数据...</translation>
    </message>
    <message>
        <source>Please select a pallet!</source>
        <translation>请选择一个托盘！</translation>
    </message>
    <message>
        <source>Are you sure to delete %1</source>
        <translation>确定删除%1吗？</translation>
    </message>
</context>
<context>
    <name>TPallet</name>
    <message>
        <source>Tray</source>
        <translation>码垛</translation>
    </message>
    <message>
        <source>pallet</source>
        <translation>托盘</translation>
    </message>
</context>
<context>
    <name>tpallet</name>
    <message>
        <source>The way points have regenerated!</source>
        <translation>路径点已重新生成！</translation>
    </message>
    <message>
        <source>The pallet's width or height is too small, it may not be calibrated!</source>
        <translation>托盘的宽度或高度过小，可能未标定！</translation>
    </message>
</context>
<context>
    <name>PalletSetDialog</name>
    <message>
        <source>Pallet Setting</source>
        <translation>托盘设置</translation>
    </message>
    <message>
        <source>Tool</source>
        <translation>工具</translation>
    </message>
    <message>
        <source>Wobj</source>
        <translation>工件</translation>
    </message>
    <message>
        <source>Toolset</source>
        <translation>工具组</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>上一步</translation>
    </message>
    <message>
        <source>Next Step</source>
        <translation>下一步</translation>
    </message>
    <message>
        <source>Finish</source>
        <translation>完成</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>确认</translation>
    </message>
    <message>
        <source>Current Pallet: </source>
        <translation>当前托盘：</translation>
    </message>
    <message>
        <source>Pattern Setting</source>
        <translation>样式设置</translation>
    </message>
    <message>
        <source>Tool Setting</source>
        <translation>工具设置</translation>
    </message>
    <message>
        <source>Calibrate Setting</source>
        <translation>标定设置</translation>
    </message>
    <message>
        <source>Path Point Setting</source>
        <translation>路径点设置</translation>
    </message>
    <message>
        <source>Path Point Check</source>
        <translation>路径点检查</translation>
    </message>
    <message>
        <source>Use Project Tool/Wobj</source>
        <translation>使用工程工具/工件</translation>
    </message>
</context>
<context>
    <name>PatternWizard</name>
    <message>
        <source>Order</source>
        <translation>顺序</translation>
    </message>
    <message>
        <source>Parallel</source>
        <translation>平行</translation>
    </message>
    <message>
        <source>S-Type</source>
        <translation>S型</translation>
    </message>
    <message>
        <source>Ranking</source>
        <translation>排列方向</translation>
    </message>
    <message>
        <source>Total:</source>
        <translation>总数：</translation>
    </message>
    <message>
        <source>Tap a corner of the pallet to make it position 1.</source>
        <translation>点击托盘的一个角，将其设为第1个位置。</translation>
    </message>
</context>
<context>
    <name>PatternWidget</name>
    <message>
        <source>Column</source>
        <translation>列</translation>
    </message>
    <message>
        <source>Row</source>
        <translation>行</translation>
    </message>
</context>
<context>
    <name>TWMenu</name>
    <message>
        <source>Form</source>
        <translation>窗体</translation>
    </message>
</context>
<context>
    <name>ToolWizard</name>
    <message>
        <source>Load</source>
        <translation>负载</translation>
    </message>
    <message>
        <source>Mass (kg)</source>
        <translation>质量 (kg)</translation>
    </message>
    <message>
        <source>Cog X (mm)</source>
        <translation>重心 X (mm)</translation>
    </message>
    <message>
        <source>Cog Y (mm)</source>
        <translation>重心 Y (mm)</translation>
    </message>
    <message>
        <source>Cog Z (mm)</source>
        <translation>重心 Z (mm)</translation>
    </message>
    <message>
        <source>Inertia X (kg.mm²)</source>
        <translation>惯量 X (kg.mm²)</translation>
    </message>
    <message>
        <source>Inertia Y (kg.mm²)</source>
        <translation>惯量 Y (kg.mm²)</translation>
    </message>
    <message>
        <source>Inertia Z (kg.mm²)</source>
        <translation>惯量 Z (kg.mm²)</translation>
    </message>
    <message>
        <source>Translate</source>
        <translation>平移</translation>
    </message>
    <message>
        <source>X (mm)</source>
        <translation>X (mm)</translation>
    </message>
    <message>
        <source>Y (mm)</source>
        <translation>Y (mm)</translation>
    </message>
    <message>
        <source>Z (mm)</source>
        <translation>Z (mm)</translation>
    </message>
    <message>
        <source>Rotation</source>
        <translation>旋转</translation>
    </message>
    <message>
        <source>Euler</source>
        <translation>欧拉角</translation>
    </message>
    <message>
        <source>Quaternion</source>
        <translation>四元数</translation>
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
        <translation>VL 工具</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>导入</translation>
    </message>
    <message>
        <source>&lt;p&gt;1.You can edit the tool manually or import it from the VL project.&lt;/p&gt;&lt;p&gt;2.Only robot holding tool is supported to import.&lt;/p&gt;</source>
        <translation>&lt;p&gt;1.可以手动编辑工具，或从VL工程导入。&lt;/p&gt;&lt;p&gt;2.仅支持导入机器人握持的工具。&lt;/p&gt;</translation>
    </message>
</context>
<context>
    <name>ToolWizard2</name>
    <message>
        <source>Load</source>
        <translation>负载</translation>
    </message>
    <message>
        <source>Mass (kg)</source>
        <translation>质量 (kg)</translation>
    </message>
    <message>
        <source>Cog X (mm)</source>
        <translation>重心 X (mm)</translation>
    </message>
    <message>
        <source>Cog Y (mm)</source>
        <translation>重心 Y (mm)</translation>
    </message>
    <message>
        <source>Cog Z (mm)</source>
        <translation>重心 Z (mm)</translation>
    </message>
    <message>
        <source>Inertia X (kg.mm²)</source>
        <translation>惯量 X (kg.mm²)</translation>
    </message>
    <message>
        <source>Inertia Y (kg.mm²)</source>
        <translation>惯量 Y (kg.mm²)</translation>
    </message>
    <message>
        <source>Inertia Z (kg.mm²)</source>
        <translation>惯量 Z (kg.mm²)</translation>
    </message>
    <message>
        <source>Translate</source>
        <translation>平移</translation>
    </message>
    <message>
        <source>X (mm)</source>
        <translation>X (mm)</translation>
    </message>
    <message>
        <source>Y (mm)</source>
        <translation>Y (mm)</translation>
    </message>
    <message>
        <source>Z (mm)</source>
        <translation>Z (mm)</translation>
    </message>
    <message>
        <source>Rotation</source>
        <translation>旋转</translation>
    </message>
    <message>
        <source>Euler</source>
        <translation>欧拉角</translation>
    </message>
    <message>
        <source>Quaternion</source>
        <translation>四元数</translation>
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
        <translation>VL 工具</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>导入</translation>
    </message>
    <message>
        <source>&lt;p&gt;1.You can edit the tool manually or import it from the VL project.&lt;/p&gt;&lt;p&gt;2.Only robot holding tool is supported to import.&lt;/p&gt;</source>
        <translation>&lt;p&gt;1.可以手动编辑工具，或从VL工程导入。&lt;/p&gt;&lt;p&gt;2.仅支持导入机器人握持的工具。&lt;/p&gt;</translation>
    </message>
</context>
<context>
    <name>ToolStep</name>
    <message>
        <source>Tray tool will be replaced, are you sure to import?</source>
        <translation>托盘工具将被替换，确定导入吗？</translation>
    </message>
    <message>
        <source>Invalid tool: %1</source>
        <translation>无效的工具：%1</translation>
    </message>
</context>
<context>
    <name>MoveToDialog</name>
    <message>
        <source>Move To</source>
        <translation>移动到点</translation>
    </message>
    <message>
        <source>Move Type</source>
        <translation>运动类型</translation>
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
        <translation>速度</translation>
    </message>
    <message>
        <source>Point</source>
        <translation>点位</translation>
    </message>
    <message>
        <source>Offset</source>
        <translation>偏移</translation>
    </message>
    <message>
        <source>None</source>
        <translation>无</translation>
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
        <translation>XYZ(mm)</translation>
    </message>
    <message>
        <source>ABC(°)</source>
        <translation>ABC(°)</translation>
    </message>
    <message>
        <source>Caution: Jog and Move will be effected according to selected coordinate system and payload.</source>
        <translation>注意：点动和运动将按照所选的坐标系和负载执行。</translation>
    </message>
    <message>
        <source>Current</source>
        <translation>当前</translation>
    </message>
    <message>
        <source>Target</source>
        <translation>目标</translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>确认</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>返回</translation>
    </message>
    <message>
        <source>Start Moving</source>
        <translation>开始运动</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>&lt;h2&gt;Move Robot into Position: %1 &lt;/h2&gt;</source>
        <translation>&lt;h2&gt;移动机器人到位置：%1 &lt;/h2&gt;</translation>
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
        <translation>X(mm)</translation>
    </message>
    <message>
        <source>Y(mm)</source>
        <translation>Y(mm)</translation>
    </message>
    <message>
        <source>Z(mm)</source>
        <translation>Z(mm)</translation>
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
        <translation>机器人未上电！</translation>
    </message>
    <message>
        <source>Can not read the robot posture!</source>
        <translation>无法读取机器人位姿！</translation>
    </message>
    <message>
        <source>Can not read the point %1 from the controller!</source>
        <translation>无法从控制器读取点位 %1！</translation>
    </message>
    <message>
        <source>The offset is out of range!</source>
        <translation>偏移量超出范围！</translation>
    </message>
    <message>
        <source>SDK Move Error</source>
        <translation>SDK 运动错误</translation>
    </message>
    <message>
        <source>The controller link is lost, the move is stopped!</source>
        <translation>与控制器的连接已断开，运动已停止！</translation>
    </message>
</context>
<context>
    <name>CalibrateSetWizard</name>
    <message>
        <source> is too close to each other, are you sure to calibrate?</source>
        <translation> 相距太近，确定要标定吗？</translation>
    </message>
    <message>
        <source>Accquire</source>
        <translation>获取</translation>
    </message>
    <message>
        <source>Move To</source>
        <translation>移动到</translation>
    </message>
    <message>
        <source>Calibrate</source>
        <translation>标定</translation>
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
        <translation>托盘坐标系</translation>
    </message>
    <message>
        <source>Swithed to pallet wobj</source>
        <translation>已切换到托盘工件坐标系</translation>
    </message>
    <message>
        <source>Teach P1 at the origin corner, P2 along the pallet's X axis and P3 along its Y axis, as the picture shows.</source>
        <translation>如图所示，在原点角示教P1，沿托盘X轴示教P2，沿Y轴示教P3。</translation>
    </message>
    <message>
        <source>Use P4</source>
        <translation>使用P4</translation>
    </message>
    <message>
        <source>swith to pallet toolset failed</source>
        <translation>切换到托盘工具组失败</translation>
    </message>
</context>
<context>
    <name>WayPointWizard</name>
    <message>
        <source>&lt;p&gt;1.Please grab the work object to the origin point when accquiring P5,P6,P7.&lt;/p&gt;&lt;p&gt;2.The other work object's coordinates will be caculated according to the reference point.&lt;/p&gt;</source>
        <translation>&lt;p&gt;1.获取P5、P6、P7时，请将工件抓取到原点位置。&lt;/p&gt;&lt;p&gt;2.其他工件的坐标将根据参考点计算。&lt;/p&gt;</translation>
    </message>
    <message>
        <source>Accquire</source>
        <translation>获取</translation>
    </message>
    <message>
        <source>Move To</source>
        <translation>移动到</translation>
    </message>
    <message>
        <source>Approach P5</source>
        <translation>接近点 P5</translation>
    </message>
    <message>
        <source>Wobj P6</source>
        <translation>放置点 P6</translation>
    </message>
    <message>
        <source>Retract P7</source>
        <translation>离开点 P7</translation>
    </message>
    <message>
        <source>Swithed to pallet wobj</source>
        <translation>已切换到托盘工件坐标系</translation>
    </message>
    <message>
        <source>swith to pallet wobj failed</source>
        <translation>切换到托盘工件坐标系失败</translation>
    </message>
</context>
<context>
    <name>PointAdjustWizard</name>
    <message>
        <source>Work Object Index</source>
        <translation>工件序号</translation>
    </message>
    <message>
        <source>Approach Point</source>
        <translation>接近点</translation>
    </message>
    <message>
        <source>Wobj Point</source>
        <translation>放置点</translation>
    </message>
    <message>
        <source>Retract Point</source>
        <translation>离开点</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>重置</translation>
    </message>
    <message>
        <source>Check Access</source>
        <translation>可达性检查</translation>
    </message>
    <message>
        <source>Accquire</source>
        <translation>获取</translation>
    </message>
    <message>
        <source>Move To</source>
        <translation>移动到</translation>
    </message>
    <message>
        <source>Adjust</source>
        <translation>调整</translation>
    </message>
    <message>
        <source>Swithed to pallet wobj</source>
        <translation>已切换到托盘工件坐标系</translation>
    </message>
    <message>
        <source>swith to pallet wobj failed</source>
        <translation>切换到托盘工件坐标系失败</translation>
    </message>
    <message>
        <source>Are you sure to adjust Approach Point %1?</source>
        <translation>确定要调整第%1个工件的接近点吗？</translation>
    </message>
    <message>
        <source>Are you sure to adjust Wobj Point %1?</source>
        <translation>确定要调整第%1个工件的放置点吗？</translation>
    </message>
    <message>
        <source>Are you sure to adjust Retract Point %1?</source>
        <translation>确定要调整第%1个工件的离开点吗？</translation>
    </message>
    <message>
        <source>Are you sure to adjust Point %1?</source>
        <translation>确定要调整第%1个工件的位置吗？</translation>
    </message>
    <message>
        <source>Checking...</source>
        <translation>正在检查...</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Wobj %1 : P5 to P6</source>
        <translation>工件 %1 : P5 到 P6</translation>
    </message>
    <message>
        <source>Wobj %1 : P6 to P7</source>
        <translation>工件 %1 : P6 到 P7</translation>
    </message>
    <message>
        <source>The path below can not be reached:
%1</source>
        <translation>以下路径无法到达：
%1</translation>
    </message>
    <message>
        <source>Check is passed!</source>
        <translation>检查通过！</translation>
    </message>
</context>
<context>
    <name>PreviewWizard</name>
    <message>
        <source>Form</source>
        <translation>窗体</translation>
    </message>
</context>
<context>
    <name>tFileDialog</name>
    <message>
        <source>Dialog</source>
        <translation>对话框</translation>
    </message>
    <message>
        <source>FileName:</source>
        <translation>文件名：</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>please insert the USB disk</source>
        <translation>请插入U盘</translation>
    </message>
</context>
<context>
    <name>ImExportDialog</name>
    <message>
        <source>Import/Export</source>
        <translation>导入/导出</translation>
    </message>
    <message>
        <source>Select File</source>
        <translation>选择文件</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>打开</translation>
    </message>
    <message>
        <source>Import Options</source>
        <translation>导入选项</translation>
    </message>
    <message>
        <source>If have duplicate elements in the imported content, choose one of the following.The new element is renamed by default,you can also choose to override existing elements or not import new elements.</source>
        <translation>如果导入的内容中有重复的元素，请选择以下方式之一。默认重命名新元素，也可以选择覆盖已有元素或不导入新元素。</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>重命名</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>覆盖</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>不导入</translation>
    </message>
    <message>
        <source>Select Items</source>
        <translation>选择项目</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>全选</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>描述</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Open XML file</source>
        <translation>打开XML文件</translation>
    </message>
    <message>
        <source>XML (*.xml)</source>
        <translation>XML (*.xml)</translation>
    </message>
    <message>
        <source>Save XML file</source>
        <translation>保存XML文件</translation>
    </message>
    <message>
        <source>The file %1 is too large (%2 MB); a pallet file has at most %3 MB.</source>
        <translation>文件 %1 太大（%2 MB）；托盘文件最大为 %3 MB。</translation>
    </message>
    <message>
        <source>The file %1 cannot be read as a pallet file:
%2</source>
        <translation>无法将文件 %1 作为托盘文件读取：
%2</translation>
    </message>
    <message>
        <source>The file %1 does not hold a list of pallets.</source>
        <translation>文件 %1 中没有托盘列表。</translation>
    </message>
    <message>
        <source>The pallet %1 in the file %2 has a missing or wrong value at "%3". Nothing is imported from this file.</source>
        <translation>文件 %2 中的托盘 %1 在“%3”处缺少值或值错误。不会从此文件导入任何内容。</translation>
    </message>
    <message>
        <source>The pallet name %1 is used twice in the file %2. Nothing is imported from this file.</source>
        <translation>托盘名称 %1 在文件 %2 中出现了两次。不会从此文件导入任何内容。</translation>
    </message>
    <message>
        <source>Import success!</source>
        <translation>导入成功！</translation>
    </message>
    <message>
        <source>Export path can not be empty!</source>
        <translation>导出路径不能为空！</translation>
    </message>
    <message>
        <source>The pallets could not be written to %1:
%2</source>
        <translation>无法将托盘写入 %1：
%2</translation>
    </message>
    <message>
        <source>Export success to %1!</source>
        <translation>成功导出到 %1！</translation>
    </message>
    <message>
        <source>Tray %1 was not stored on the controller, it will be lost at the next reload!</source>
        <translation>托盘 %1 未保存到控制器，下次重新加载时将丢失！</translation>
    </message>
</context>
</TS>