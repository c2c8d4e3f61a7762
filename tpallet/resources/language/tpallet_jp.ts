<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP">
<context>
    <name>NewPalletDialog</name>
    <message>
        <source>Pallet</source>
        <translation>パレット</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名前</translation>
    </message>
    <message>
        <source>Desc</source>
        <translation>説明</translation>
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
        <translation>複製</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
    <message>
        <source>Tray name is empty!</source>
        <translation>パレット名が空です！</translation>
    </message>
    <message>
        <source>Tray name length is be greater than 32!</source>
        <translation>パレット名は32文字を超えられません！</translation>
    </message>
    <message>
        <source>Tray name is repeated!</source>
        <translation>パレット名が重複しています！</translation>
    </message>
    <message>
        <source>Total wobj number can not be greater than %1!</source>
        <translation>ワーク総数は%1を超えられません！</translation>
    </message>
    <message>
        <source>Tray %1 was not stored on the controller, it will be lost at the next reload!</source>
        <translation>パレット %1 はコントローラーに保存されていません。次回の再読み込みで失われます！</translation>
    </message>
</context>
<context>
    <name>PalletPage</name>
    <message>
        <source>Name</source>
        <translation>名前</translation>
    </message>
    <message>
        <source>Total</source>
        <translation>総数</translation>
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
        <translation>説明</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>インポート</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>エクスポート</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>追加</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>編集</translation>
    </message>
    <message>
        <source>Configure</source>
        <translation>設定</translation>
    </message>
    <message>
        <source>Point Check</source>
        <translation>ポイント確認</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>削除</translation>
    </message>
    <message>
        <source>Tray</source>
        <translation>パレタイズ</translation>
    </message>
    <message>
        <source>Acquiring pallet data...</source>
        <translation>パレットデータを取得中...</translation>
    </message>
    <message>
        <source>Please select a pallet!</source>
        <translation>パレットを選択してください！</translation>
    </message>
    <message>
        <source>Are you sure to delete %1</source>
        <translation>%1を削除しますか？</translation>
    </message>
</context>
<context>
    <name>TPallet</name>
    <message>
        <source>Tray</source>
        <translation>パレタイズ</translation>
    </message>
    <message>
        <source>pallet</source>
        <translation>パレット</translation>
    </message>
</context>
<context>
    <name>tpallet</name>
    <message>
        <source>The way points have regenerated!</source>
        <translation>経由点を再生成しました！</translation>
    </message>
    <message>
        <source>The pallet's width or height is too small, it may not be calibrated!</source>
        <translation>パレットの幅または高さが小さすぎます。キャリブレーションされていない可能性があります！</translation>
    </message>
</context>
<context>
    <name>PalletSetDialog</name>
    <message>
        <source>Pallet Setting</source>
        <translation>パレット設定</translation>
    </message>
    <message>
        <source>Tool</source>
        <translation>ツール</translation>
    </message>
    <message>
        <source>Wobj</source>
        <translation>ワーク</translation>
    </message>
    <message>
        <source>Toolset</source>
        <translation>ツールセット</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>前へ</translation>
    </message>
    <message>
        <source>Next Step</source>
        <translation>次へ</translation>
    </message>
    <message>
        <source>Finish</source>
        <translation>完了</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>確認</translation>
    </message>
    <message>
        <source>Current Pallet: </source>
        <translation>現在のパレット：</translation>
    </message>
    <message>
        <source>Pattern Setting</source>
        <translation>パターン設定</translation>
    </message>
    <message>
        <source>Tool Setting</source>
        <translation>ツール設定</translation>
    </message>
    <message>
        <source>Calibrate Setting</source>
        <translation>キャリブレーション</translation>
    </message>
    <message>
        <source>Path Point Setting</source>
        <translation>経路点設定</translation>
    </message>
    <message>
        <source>Path Point Check</source>
        <translation>経路点チェック</translation>
    </message>
    <message>
        <source>Use Project Tool/Wobj</source>
        <translation>プロジェクトのツール/ワークを使用</translation>
    </message>
</context>
<context>
    <name>PatternWizard</name>
    <message>
        <source>Order</source>
        <translation>順序</translation>
    </message>
    <message>
        <source>Parallel</source>
        <translation>平行</translation>
    </message>
    <message>
        <source>S-Type</source>
        <translation>S字</translation>
    </message>
    <message>
        <source>Ranking</source>
        <translation>並び方向</translation>
    </message>
    <message>
        <source>Total:</source>
        <translation>合計：</translation>
    </message>
    <message>
        <source>Tap a corner of the pallet to make it position 1.</source>
        <translation>パレットの角をタップすると、そこが1番目の位置になります。</translation>
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
        <translation>フォーム</translation>
    </message>
</context>
<context>
    <name>ToolWizard</name>
    <message>
        <source>Load</source>
        <translation>負荷</translation>
    </message>
    <message>
        <source>Mass (kg)</source>
        <translation>質量 (kg)</translation>
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
        <translation>慣性 X (kg.mm²)</translation>
    </message>
    <message>
        <source>Inertia Y (kg.mm²)</source>
        <translation>慣性 Y (kg.mm²)</translation>
    </message>
    <message>
        <source>Inertia Z (kg.mm²)</source>
        <translation>慣性 Z (kg.mm²)</translation>
    </message>
    <message>
        <source>Translate</source>
        <translation>並進</translation>
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
        <translation>回転</translation>
    </message>
    <message>
        <source>Euler</source>
        <translation>オイラー角</translation>
    </message>
    <message>
        <source>Quaternion</source>
        <translation>クォータニオン</translation>
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
        <translation>VL ツール</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>インポート</translation>
    </message>
    <message>
        <source>&lt;p&gt;1.You can edit the tool manually or import it from the VL project.&lt;/p&gt;&lt;p&gt;2.Only robot holding tool is supported to import.&lt;/p&gt;</source>
        <translation>&lt;p&gt;1.ツールは手動で編集するか、VLプロジェクトからインポートできます。&lt;/p&gt;&lt;p&gt;2.インポートできるのはロボットが保持するツールのみです。&lt;/p&gt;</translation>
    </message>
</context>
<context>
    <name>ToolWizard2</name>
    <message>
        <source>Load</source>
        <translation>負荷</translation>
    </message>
    <message>
        <source>Mass (kg)</source>
        <translation>質量 (kg)</translation>
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
        <translation>慣性 X (kg.mm²)</translation>
    </message>
    <message>
        <source>Inertia Y (kg.mm²)</source>
        <translation>慣性 Y (kg.mm²)</translation>
    </message>
    <message>
        <source>Inertia Z (kg.mm²)</source>
        <translation>慣性 Z (kg.mm²)</translation>
    </message>
    <message>
        <source>Translate</source>
        <translation>並進</translation>
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
        <translation>回転</translation>
    </message>
    <message>
        <source>Euler</source>
        <translation>オイラー角</translation>
    </message>
    <message>
        <source>Quaternion</source>
        <translation>クォータニオン</translation>
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
        <translation>VL ツール</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>インポート</translation>
    </message>
    <message>
        <source>&lt;p&gt;1.You can edit the tool manually or import it from the VL project.&lt;/p&gt;&lt;p&gt;2.Only robot holding tool is supported to import.&lt;/p&gt;</source>
        <translation>&lt;p&gt;1.ツールは手動で編集するか、VLプロジェクトからインポートできます。&lt;/p&gt;&lt;p&gt;2.インポートできるのはロボットが保持するツールのみです。&lt;/p&gt;</translation>
    </message>
</context>
<context>
    <name>ToolStep</name>
    <message>
        <source>Tray tool will be replaced, are you sure to import?</source>
        <translation>パレットのツールが置き換えられます。インポートしますか？</translation>
    </message>
    <message>
        <source>Invalid tool: %1</source>
        <translation>無効なツール：%1</translation>
    </message>
</context>
<context>
    <name>MoveToDialog</name>
    <message>
        <source>Move To</source>
        <translation>ポイントへ移動</translation>
    </message>
    <message>
        <source>Move Type</source>
        <translation>移動タイプ</translation>
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
        <translation>ポイント</translation>
    </message>
    <message>
        <source>Offset</source>
        <translation>オフセット</translation>
    </message>
    <message>
        <source>None</source>
        <translation>なし</translation>
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
        <translation>注意：ジョグと移動は選択した座標系と負荷に従って実行されます。</translation>
    </message>
    <message>
        <source>Current</source>
        <translation>現在</translation>
    </message>
    <message>
        <source>Target</source>
        <translation>目標</translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>確認</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>戻る</translation>
    </message>
    <message>
        <source>Start Moving</source>
        <translation>移動開始</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>閉じる</translation>
    </message>
    <message>
        <source>&lt;h2&gt;Move Robot into Position: %1 &lt;/h2&gt;</source>
        <translation>&lt;h2&gt;ロボットを位置へ移動：%1 &lt;/h2&gt;</translation>
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
        <translation>ロボットの電源がオフです！</translation>
    </message>
    <message>
        <source>Can not read the robot posture!</source>
        <translation>ロボットの姿勢を読み取れません！</translation>
    </message>
    <message>
        <source>Can not read the point %1 from the controller!</source>
        <translation>コントローラからポイント %1 を読み取れません！</translation>
    </message>
    <message>
        <source>The offset is out of range!</source>
        <translation>オフセットが範囲外です！</translation>
    </message>
    <message>
        <source>SDK Move Error</source>
        <translation>SDK 移動エラー</translation>
    </message>
    <message>
        <source>The controller link is lost, the move is stopped!</source>
        <translation>コントローラとの接続が切れたため、移動を停止しました！</translation>
    </message>
</context>
<context>
    <name>CalibrateSetWizard</name>
    <message>
        <source> is too close to each other, are you sure to calibrate?</source>
        <translation> が近すぎます。キャリブレーションしますか？</translation>
    </message>
    <message>
        <source>Accquire</source>
        <translation>取得</translation>
    </message>
    <message>
        <source>Move To</source>
        <translation>移動</translation>
    </message>
    <message>
        <source>Calibrate</source>
        <translation>キャリブレーション</translation>
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
        <translation>パレット座標系</translation>
    </message>
    <message>
        <source>Swithed to pallet wobj</source>
        <translation>パレットのワーク座標系に切り替えました</translation>
    </message>
    <message>
        <source>Teach P1 at the origin corner, P2 along the pallet's X axis and P3 along its Y axis, as the picture shows.</source>
        <translation>図のように、原点の角でP1を、パレットのX軸方向にP2を、Y軸方向にP3を教示してください。</translation>
    </message>
    <message>
        <source>Use P4</source>
        <translation>P4を使用</translation>
    </message>
    <message>
        <source>swith to pallet toolset failed</source>
        <translation>パレットのツールセットへの切り替えに失敗しました</translation>
    </message>
</context>
<context>
    <name>WayPointWizard</name>
    <message>
        <source>&lt;p&gt;1.Please grab the work object to the origin point when accquiring P5,P6,P7.&lt;/p&gt;&lt;p&gt;2.The other work object's coordinates will be caculated according to the reference point.&lt;/p&gt;</source>
        <translation>&lt;p&gt;1.P5、P6、P7を取得するときは、ワークを原点位置でつかんでください。&lt;/p&gt;&lt;p&gt;2.ほかのワークの座標は基準点から計算されます。&lt;/p&gt;</translation>
    </message>
    <message>
        <source>Accquire</source>
        <translation>取得</translation>
    </message>
    <message>
        <source>Move To</source>
        <translation>移動</translation>
    </message>
    <message>
        <source>Approach P5</source>
        <translation>接近点 P5</translation>
    </message>
    <message>
        <source>Wobj P6</source>
        <translation>配置点 P6</translation>
    </message>
    <message>
        <source>Retract P7</source>
        <translation>退避点 P7</translation>
    </message>
    <message>
        <source>Swithed to pallet wobj</source>
        <translation>パレットのワーク座標系に切り替えました</translation>
    </message>
    <message>
        <source>swith to pallet wobj failed</source>
        <translation>パレットのワーク座標系への切り替えに失敗しました</translation>
    </message>
</context>
<context>
    <name>PointAdjustWizard</name>
    <message>
        <source>Work Object Index</source>
        <translation>ワーク番号</translation>
    </message>
    <message>
        <source>Approach Point</source>
        <translation>接近点</translation>
    </message>
    <message>
        <source>Wobj Point</source>
        <translation>配置点</translation>
    </message>
    <message>
        <source>Retract Point</source>
        <translation>退避点</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>リセット</translation>
    </message>
    <message>
        <source>Check Access</source>
        <translation>到達性チェック</translation>
    </message>
    <message>
        <source>Accquire</source>
        <translation>取得</translation>
    </message>
    <message>
        <source>Move To</source>
        <translation>移動</translation>
    </message>
    <message>
        <source>Adjust</source>
        <translation>調整</translation>
    </message>
    <message>
        <source>Swithed to pallet wobj</source>
        <translation>パレットのワーク座標系に切り替えました</translation>
    </message>
    <message>
        <source>swith to pallet wobj failed</source>
        <translation>パレットのワーク座標系への切り替えに失敗しました</translation>
    </message>
    <message>
        <source>Are you sure to adjust Approach Point %1?</source>
        <translation>%1 番の接近点を調整しますか？</translation>
    </message>
    <message>
        <source>Are you sure to adjust Wobj Point %1?</source>
        <translation>%1 番の配置点を調整しますか？</translation>
    </message>
    <message>
        <source>Are you sure to adjust Retract Point %1?</source>
        <translation>%1 番の退避点を調整しますか？</translation>
    </message>
    <message>
        <source>Are you sure to adjust Point %1?</source>
        <translation>%1 番の位置を調整しますか？</translation>
    </message>
    <message>
        <source>Checking...</source>
        <translation>チェック中...</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
    <message>
        <source>Wobj %1 : P5 to P6</source>
        <translation>ワーク %1 : P5 から P6</translation>
    </message>
    <message>
        <source>Wobj %1 : P6 to P7</source>
        <translation>ワーク %1 : P6 から P7</translation>
    </message>
    <message>
        <source>The path below can not be reached:
%1</source>
        <translation>次の経路には到達できません：
%1</translation>
    </message>
    <message>
        <source>Check is passed!</source>
        <translation>チェックに合格しました！</translation>
    </message>
</context>
<context>
    <name>PreviewWizard</name>
    <message>
        <source>Form</source>
        <translation>フォーム</translation>
    </message>
</context>
<context>
    <name>tFileDialog</name>
    <message>
        <source>Dialog</source>
        <translation>ダイアログ</translation>
    </message>
    <message>
        <source>FileName:</source>
        <translation>ファイル名：</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>please insert the USB disk</source>
        <translation>USBメモリを挿入してください</translation>
    </message>
</context>
<context>
    <name>ImExportDialog</name>
    <message>
        <source>Import/Export</source>
        <translation>インポート/エクスポート</translation>
    </message>
    <message>
        <source>Select File</source>
        <translation>ファイルを選択</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>開く</translation>
    </message>
    <message>
        <source>Import Options</source>
        <translation>インポートオプション</translation>
    </message>
    <message>
        <source>If have duplicate elements in the imported content, choose one of the following.The new element is renamed by default,you can also choose to override existing elements or not import new elements.</source>
        <translation>インポートする内容に重複する要素がある場合は、次のいずれかを選択してください。既定では新しい要素の名前を変更します。既存の要素を上書きするか、新しい要素をインポートしないこともできます。</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>名前を変更</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>上書き</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>破棄</translation>
    </message>
    <message>
        <source>Select Items</source>
        <translation>項目を選択</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>すべて選択</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名前</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>説明</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Open XML file</source>
        <translation>XMLファイルを開く</translation>
    </message>
    <message>
        <source>XML (*.xml)</source>
        <translation>XML (*.xml)</translation>
    </message>
    <message>
        <source>Save XML file</source>
        <translation>XMLファイルを保存</translation>
    </message>
    <message>
        <source>The file %1 is too large (%2 MB); a pallet file has at most %3 MB.</source>
        <translation>ファイル %1 は大きすぎます（%2 MB）。パレットファイルは最大 %3 MB です。</translation>
    </message>
    <message>
        <source>The file %1 cannot be read as a pallet file:
%2</source>
        <translation>ファイル %1 をパレットファイルとして読み込めません：
%2</translation>
    </message>
    <message>
        <source>The file %1 does not hold a list of pallets.</source>
        <translation>ファイル %1 にはパレットの一覧がありません。</translation>
    </message>
    <message>
        <source>The pallet %1 in the file %2 has a missing or wrong value at "%3". Nothing is imported from this file.</source>
        <translation>ファイル %2 のパレット %1 は「%3」の値がないか誤っています。このファイルからは何もインポートされません。</translation>
    </message>
    <message>
        <source>The pallet name %1 is used twice in the file %2. Nothing is imported from this file.</source>
        <translation>パレット名 %1 がファイル %2 で2回使われています。このファイルからは何もインポートされません。</translation>
    </message>
    <message>
        <source>Import success!</source>
        <translation>インポートに成功しました！</translation>
    </message>
    <message>
        <source>Export path can not be empty!</source>
        <translation>エクスポート先を空にすることはできません！</translation>
    </message>
    <message>
        <source>The pallets could not be written to %1:
%2</source>
        <translation>パレットを %1 に書き込めませんでした：
%2</translation>
    </message>
    <message>
        <source>Export success to %1!</source>
        <translation>%1 へのエクスポートに成功しました！</translation>
    </message>
    <message>
        <source>Tray %1 was not stored on the controller, it will be lost at the next reload!</source>
        <translation>パレット %1 はコントローラに保存されていません。次の再読み込みで失われます！</translation>
    </message>
</context>
</TS>