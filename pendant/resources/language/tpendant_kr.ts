<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ko_KR">
<context>
    <name>HostNodes</name>
    <message>
        <source>unknown tool</source>
        <translation>알 수 없는 공구</translation>
    </message>
    <message>
        <source>stationary tools are not supported</source>
        <translation>고정 공구는 지원되지 않습니다</translation>
    </message>
    <message>
        <source>Tool</source>
        <translation>공구</translation>
    </message>
    <message>
        <source>%1 / %2 not made active</source>
        <translation>%1 / %2 활성화 실패</translation>
    </message>
</context>
<context>
    <name>JogPanel</name>
    <message>
        <source>Continuous</source>
        <translation>연속</translation>
    </message>
    <message>
        <source>Jog</source>
        <translation>조그</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>좌표계</translation>
    </message>
    <message>
        <source>Step</source>
        <translation>스텝</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>속도</translation>
    </message>
    <message>
        <source>Joint</source>
        <translation>관절</translation>
    </message>
    <message>
        <source>Base</source>
        <translation>베이스</translation>
    </message>
    <message>
        <source>Tool</source>
        <translation>공구</translation>
    </message>
    <message>
        <source>No controller</source>
        <translation>컨트롤러 없음</translation>
    </message>
    <message>
        <source>The controller did not answer</source>
        <translation>컨트롤러 응답 없음</translation>
    </message>
    <message>
        <source>The robot is powered off</source>
        <translation>로봇 전원이 꺼져 있습니다</translation>
    </message>
    <message>
        <source>Edge of the workspace: the robot cannot go further this way</source>
        <translation>작업 영역 끝: 이 방향으로 더 이동할 수 없습니다</translation>
    </message>
    <message>
        <source>Joint limit: the robot cannot go further this way</source>
        <translation>관절 한계: 이 방향으로 더 이동할 수 없습니다</translation>
    </message>
    <message>
        <source>Singularity: the robot cannot go further this way</source>
        <translation>특이점: 이 방향으로 더 이동할 수 없습니다</translation>
    </message>
    <message>
        <source>The arm would change its configuration: jog the joints instead</source>
        <translation>로봇 팔 자세가 바뀝니다: 관절 조그를 사용하십시오</translation>
    </message>
    <message>
        <source>The robot is moving</source>
        <translation>로봇이 움직이는 중입니다</translation>
    </message>
    <message>
        <source>Refused</source>
        <translation>거부됨</translation>
    </message>
    <message>
        <source>Refused: %1</source>
        <translation>거부됨: %1</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>No on-screen keyboard</source>
        <translation>화면 키보드 없음</translation>
    </message>
    <message>
        <source>Jog</source>
        <translation>조그</translation>
    </message>
</context>
<context>
    <name>NavigationView</name>
    <message>
        <source>Robot</source>
        <translation>로봇</translation>
    </message>
    <message>
        <source>Pack</source>
        <translation>포장</translation>
    </message>
    <message>
        <source>Setting</source>
        <translation>설정</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>홈</translation>
    </message>
</context>
<context>
    <name>Shell</name>
    <message>
        <source>Module not loaded: %1</source>
        <translation>모듈을 불러오지 못함: %1</translation>
    </message>
    <message>
        <source>USB folder not found</source>
        <translation>USB 폴더를 찾을 수 없음</translation>
    </message>
    <message>
        <source>Controller disconnected</source>
        <translation>컨트롤러 연결 끊김</translation>
    </message>
    <message>
        <source>Page not found</source>
        <translation>페이지를 찾을 수 없음</translation>
    </message>
    <message>
        <source>Controller not started</source>
        <translation>컨트롤러가 시작되지 않음</translation>
    </message>
    <message>
        <source>No module directory</source>
        <translation>모듈 폴더 없음</translation>
    </message>
    <message>
        <source>Module loaded</source>
        <translation>모듈 불러옴</translation>
    </message>
    <message>
        <source>Controller connected</source>
        <translation>컨트롤러 연결됨</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>프로젝트</translation>
    </message>
    <message>
        <source>tool and work-object lists not read</source>
        <translation>공구 및 공작물 목록을 읽지 못함</translation>
    </message>
    <message>
        <source>none</source>
        <translation>없음</translation>
    </message>
    <message>
        <source>built-in simulator</source>
        <translation>내장 시뮬레이터</translation>
    </message>
    <message>
        <source>Teach pendant</source>
        <translation>티치 펜던트</translation>
    </message>
    <message>
        <source>Controller:</source>
        <translation>컨트롤러:</translation>
    </message>
    <message>
        <source>connected</source>
        <translation>연결됨</translation>
    </message>
    <message>
        <source>not connected</source>
        <translation>연결 안 됨</translation>
    </message>
    <message>
        <source>Controller data:</source>
        <translation>컨트롤러 데이터:</translation>
    </message>
    <message>
        <source>Modules:</source>
        <translation>모듈:</translation>
    </message>
    <message>
        <source>none found</source>
        <translation>찾지 못함</translation>
    </message>
</context>
<context>
    <name>StatusBar</name>
    <message>
        <source>Level %1</source>
        <translation>레벨 %1</translation>
    </message>
    <message>
        <source>none</source>
        <translation>없음</translation>
    </message>
    <message>
        <source>built-in simulator</source>
        <translation>내장 시뮬레이터</translation>
    </message>
    <message>
        <source>● Controller: %1</source>
        <translation>● 컨트롤러: %1</translation>
    </message>
    <message>
        <source>○ No controller (%1)</source>
        <translation>○ 컨트롤러 없음 (%1)</translation>
    </message>
    <message>
        <source>Power ?</source>
        <translation>전원 ?</translation>
    </message>
    <message>
        <source>Power ON</source>
        <translation>전원 켜짐</translation>
    </message>
    <message>
        <source>Power OFF</source>
        <translation>전원 꺼짐</translation>
    </message>
</context>
<context>
    <name>VirtualKeyboard</name>
    <message>
        <source>Qt's virtual keyboard is not the input method (QT_IM_MODULE).</source>
        <translation>입력기가 Qt 가상 키보드가 아닙니다(QT_IM_MODULE).</translation>
    </message>
    <message>
        <source>The keyboard did not load.</source>
        <translation>키보드를 불러오지 못했습니다.</translation>
    </message>
    <message>
        <source>This build has no on-screen keyboard (Qt Quick was not found).</source>
        <translation>이 빌드에는 화면 키보드가 없습니다(Qt Quick 없음).</translation>
    </message>
</context>
<context>
    <name>tcore::ManagerHelper</name>
    <message>
        <source>Question</source>
        <translation>질문</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>경고</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>오류</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>정보</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>확인</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>취소</translation>
    </message>
</context>
</TS>
