<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP">
<context>
    <name>HostNodes</name>
    <message>
        <source>unknown tool</source>
        <translation>不明なツール</translation>
    </message>
    <message>
        <source>stationary tools are not supported</source>
        <translation>固定ツールには対応していません</translation>
    </message>
    <message>
        <source>Tool</source>
        <translation>ツール</translation>
    </message>
    <message>
        <source>%1 / %2 not made active</source>
        <translation>%1 / %2 を有効にできません</translation>
    </message>
</context>
<context>
    <name>JogPanel</name>
    <message>
        <source>Continuous</source>
        <translation>連続</translation>
    </message>
    <message>
        <source>Jog</source>
        <translation>ジョグ</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>座標系</translation>
    </message>
    <message>
        <source>Step</source>
        <translation>ステップ</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>速度</translation>
    </message>
    <message>
        <source>Joint</source>
        <translation>関節</translation>
    </message>
    <message>
        <source>Base</source>
        <translation>ベース</translation>
    </message>
    <message>
        <source>Tool</source>
        <translation>ツール</translation>
    </message>
    <message>
        <source>No controller</source>
        <translation>コントローラ未接続</translation>
    </message>
    <message>
        <source>The controller did not answer</source>
        <translation>コントローラが応答しません</translation>
    </message>
    <message>
        <source>The robot is powered off</source>
        <translation>ロボットの電源がオフです</translation>
    </message>
    <message>
        <source>Edge of the workspace: the robot cannot go further this way</source>
        <translation>作業領域の端です：この方向にはこれ以上動けません</translation>
    </message>
    <message>
        <source>Joint limit: the robot cannot go further this way</source>
        <translation>関節リミット：この方向にはこれ以上動けません</translation>
    </message>
    <message>
        <source>Singularity: the robot cannot go further this way</source>
        <translation>特異点：この方向にはこれ以上動けません</translation>
    </message>
    <message>
        <source>The arm would change its configuration: jog the joints instead</source>
        <translation>アームの姿勢形態が変わります：関節ジョグを使ってください</translation>
    </message>
    <message>
        <source>The robot is moving</source>
        <translation>ロボットが動作中です</translation>
    </message>
    <message>
        <source>Refused</source>
        <translation>拒否されました</translation>
    </message>
    <message>
        <source>Refused: %1</source>
        <translation>拒否されました：%1</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>No on-screen keyboard</source>
        <translation>画面キーボードなし</translation>
    </message>
    <message>
        <source>Jog</source>
        <translation>ジョグ</translation>
    </message>
</context>
<context>
    <name>NavigationView</name>
    <message>
        <source>Robot</source>
        <translation>ロボット</translation>
    </message>
    <message>
        <source>Pack</source>
        <translation>パッキング</translation>
    </message>
    <message>
        <source>Setting</source>
        <translation>設定</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>ホーム</translation>
    </message>
</context>
<context>
    <name>Shell</name>
    <message>
        <source>Module not loaded: %1</source>
        <translation>モジュールを読み込めません：%1</translation>
    </message>
    <message>
        <source>USB folder not found</source>
        <translation>USB フォルダが見つかりません</translation>
    </message>
    <message>
        <source>Controller disconnected</source>
        <translation>コントローラが切断されました</translation>
    </message>
    <message>
        <source>Page not found</source>
        <translation>ページが見つかりません</translation>
    </message>
    <message>
        <source>Controller not started</source>
        <translation>コントローラが起動していません</translation>
    </message>
    <message>
        <source>No module directory</source>
        <translation>モジュールフォルダがありません</translation>
    </message>
    <message>
        <source>Module loaded</source>
        <translation>モジュールを読み込みました</translation>
    </message>
    <message>
        <source>Controller connected</source>
        <translation>コントローラが接続されました</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>プロジェクト</translation>
    </message>
    <message>
        <source>tool and work-object lists not read</source>
        <translation>ツールとワークのリストを読み込めません</translation>
    </message>
    <message>
        <source>none</source>
        <translation>なし</translation>
    </message>
    <message>
        <source>built-in simulator</source>
        <translation>内蔵シミュレータ</translation>
    </message>
    <message>
        <source>Teach pendant</source>
        <translation>ティーチングペンダント</translation>
    </message>
    <message>
        <source>Controller:</source>
        <translation>コントローラ：</translation>
    </message>
    <message>
        <source>connected</source>
        <translation>接続中</translation>
    </message>
    <message>
        <source>not connected</source>
        <translation>未接続</translation>
    </message>
    <message>
        <source>Controller data:</source>
        <translation>コントローラデータ：</translation>
    </message>
    <message>
        <source>Modules:</source>
        <translation>モジュール：</translation>
    </message>
    <message>
        <source>none found</source>
        <translation>見つかりません</translation>
    </message>
</context>
<context>
    <name>StatusBar</name>
    <message>
        <source>Level %1</source>
        <translation>レベル %1</translation>
    </message>
    <message>
        <source>none</source>
        <translation>なし</translation>
    </message>
    <message>
        <source>built-in simulator</source>
        <translation>内蔵シミュレータ</translation>
    </message>
    <message>
        <source>● Controller: %1</source>
        <translation>● コントローラ：%1</translation>
    </message>
    <message>
        <source>○ No controller (%1)</source>
        <translation>○ コントローラ未接続（%1）</translation>
    </message>
    <message>
        <source>Power ?</source>
        <translation>電源 ?</translation>
    </message>
    <message>
        <source>Power ON</source>
        <translation>電源 オン</translation>
    </message>
    <message>
        <source>Power OFF</source>
        <translation>電源 オフ</translation>
    </message>
</context>
<context>
    <name>VirtualKeyboard</name>
    <message>
        <source>Qt's virtual keyboard is not the input method (QT_IM_MODULE).</source>
        <translation>入力メソッドが Qt の仮想キーボードではありません（QT_IM_MODULE）。</translation>
    </message>
    <message>
        <source>The keyboard did not load.</source>
        <translation>キーボードを読み込めませんでした。</translation>
    </message>
    <message>
        <source>This build has no on-screen keyboard (Qt Quick was not found).</source>
        <translation>このビルドには画面キーボードがありません（Qt Quick が見つかりません）。</translation>
    </message>
</context>
<context>
    <name>tcore::ManagerHelper</name>
    <message>
        <source>Question</source>
        <translation>確認</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>エラー</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>情報</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
</context>
</TS>
