<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ko_KR">
<context>
    <name>NewPalletDialog</name>
    <message>
        <source>Pallet</source>
        <translation>팔레트</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>이름</translation>
    </message>
    <message>
        <source>Desc</source>
        <translation>설명</translation>
    </message>
    <message>
        <source>Row</source>
        <translation>행</translation>
    </message>
    <message>
        <source>Column</source>
        <translation>열</translation>
    </message>
    <message>
        <source>Clone</source>
        <translation>복제</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>확인</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>취소</translation>
    </message>
    <message>
        <source>Tray name is empty!</source>
        <translation>팔레트 이름이 비어 있습니다!</translation>
    </message>
    <message>
        <source>Tray name length is be greater than 32!</source>
        <translation>팔레트 이름은 32자를 넘을 수 없습니다!</translation>
    </message>
    <message>
        <source>Tray name is repeated!</source>
        <translation>팔레트 이름이 중복되었습니다!</translation>
    </message>
    <message>
        <source>Total wobj number can not be greater than %1!</source>
        <translation>전체 공작물 수는 %1을(를) 넘을 수 없습니다!</translation>
    </message>
    <message>
        <source>Tray %1 was not stored on the controller, it will be lost at the next reload!</source>
        <translation>팔레트 %1이(가) 컨트롤러에 저장되지 않았습니다. 다음 다시 불러오기 때 사라집니다!</translation>
    </message>
</context>
<context>
    <name>PalletPage</name>
    <message>
        <source>Name</source>
        <translation>이름</translation>
    </message>
    <message>
        <source>Total</source>
        <translation>총수</translation>
    </message>
    <message>
        <source>Row</source>
        <translation>행</translation>
    </message>
    <message>
        <source>Column</source>
        <translation>열</translation>
    </message>
    <message>
        <source>Desc</source>
        <translation>설명</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>가져오기</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>내보내기</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>추가</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>편집</translation>
    </message>
    <message>
        <source>Configure</source>
        <translation>구성</translation>
    </message>
    <message>
        <source>Point Check</source>
        <translation>포인트 확인</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>삭제</translation>
    </message>
    <message>
        <source>Tray</source>
        <translation>팔레타이징</translation>
    </message>
    <message>
        <source>Acquiring pallet data...</source>
        <translation>팔레트 데이터를 가져오는 중...</translation>
    </message>
    <message>
        <source>Please select a pallet!</source>
        <translation>팔레트를 선택하십시오!</translation>
    </message>
    <message>
        <source>Are you sure to delete %1</source>
        <translation>%1을(를) 삭제하시겠습니까?</translation>
    </message>
</context>
<context>
    <name>TPallet</name>
    <message>
        <source>Tray</source>
        <translation>팔레타이징</translation>
    </message>
    <message>
        <source>pallet</source>
        <translation>팔레트</translation>
    </message>
</context>
<context>
    <name>tpallet</name>
    <message>
        <source>The way points have regenerated!</source>
        <translation>경유점이 다시 생성되었습니다!</translation>
    </message>
    <message>
        <source>The pallet's width or height is too small, it may not be calibrated!</source>
        <translation>팔레트의 너비 또는 높이가 너무 작습니다. 보정되지 않았을 수 있습니다!</translation>
    </message>
</context>
<context>
    <name>PalletSetDialog</name>
    <message>
        <source>Pallet Setting</source>
        <translation>팔레트 설정</translation>
    </message>
    <message>
        <source>Tool</source>
        <translation>공구</translation>
    </message>
    <message>
        <source>Wobj</source>
        <translation>공작물</translation>
    </message>
    <message>
        <source>Toolset</source>
        <translation>툴셋</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>이전</translation>
    </message>
    <message>
        <source>Next Step</source>
        <translation>다음</translation>
    </message>
    <message>
        <source>Finish</source>
        <translation>완료</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>취소</translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>확인</translation>
    </message>
    <message>
        <source>Current Pallet: </source>
        <translation>현재 팔레트: </translation>
    </message>
    <message>
        <source>Pattern Setting</source>
        <translation>패턴 설정</translation>
    </message>
    <message>
        <source>Tool Setting</source>
        <translation>공구 설정</translation>
    </message>
    <message>
        <source>Calibrate Setting</source>
        <translation>보정 설정</translation>
    </message>
    <message>
        <source>Path Point Setting</source>
        <translation>경로점 설정</translation>
    </message>
    <message>
        <source>Path Point Check</source>
        <translation>경로점 점검</translation>
    </message>
    <message>
        <source>Use Project Tool/Wobj</source>
        <translation>프로젝트 공구/공작물 사용</translation>
    </message>
</context>
<context>
    <name>PatternWizard</name>
    <message>
        <source>Order</source>
        <translation>순서</translation>
    </message>
    <message>
        <source>Parallel</source>
        <translation>평행</translation>
    </message>
    <message>
        <source>S-Type</source>
        <translation>S형</translation>
    </message>
    <message>
        <source>Ranking</source>
        <translation>배열 방향</translation>
    </message>
    <message>
        <source>Total:</source>
        <translation>합계:</translation>
    </message>
    <message>
        <source>Tap a corner of the pallet to make it position 1.</source>
        <translation>팔레트의 모서리를 눌러 1번 위치로 지정하십시오.</translation>
    </message>
</context>
<context>
    <name>PatternWidget</name>
    <message>
        <source>Column</source>
        <translation>열</translation>
    </message>
    <message>
        <source>Row</source>
        <translation>행</translation>
    </message>
</context>
<context>
    <name>TWMenu</name>
    <message>
        <source>Form</source>
        <translation>폼</translation>
    </message>
</context>
<context>
    <name>ToolWizard</name>
    <message>
        <source>Load</source>
        <translation>부하</translation>
    </message>
    <message>
        <source>Mass (kg)</source>
        <translation>질량 (kg)</translation>
    </message>
    <message>
        <source>Cog X (mm)</source>
        <translation>무게중심 X (mm)</translation>
    </message>
    <message>
        <source>Cog Y (mm)</source>
        <translation>무게중심 Y (mm)</translation>
    </message>
    <message>
        <source>Cog Z (mm)</source>
        <translation>무게중심 Z (mm)</translation>
    </message>
    <message>
        <source>Inertia X (kg.mm²)</source>
        <translation>관성 X (kg.mm²)</translation>
    </message>
    <message>
        <source>Inertia Y (kg.mm²)</source>
        <translation>관성 Y (kg.mm²)</translation>
    </message>
    <message>
        <source>Inertia Z (kg.mm²)</source>
        <translation>관성 Z (kg.mm²)</translation>
    </message>
    <message>
        <source>Translate</source>
        <translation>이동</translation>
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
        <translation>회전</translation>
    </message>
    <message>
        <source>Euler</source>
        <translation>오일러각</translation>
    </message>
    <message>
        <source>Quaternion</source>
        <translation>쿼터니언</translation>
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
        <translation>VL 공구</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>가져오기</translation>
    </message>
    <message>
        <source>&lt;p&gt;1.You can edit the tool manually or import it from the VL project.&lt;/p&gt;&lt;p&gt;2.Only robot holding tool is supported to import.&lt;/p&gt;</source>
        <translation>&lt;p&gt;1.공구를 직접 편집하거나 VL 프로젝트에서 가져올 수 있습니다.&lt;/p&gt;&lt;p&gt;2.로봇이 잡는 공구만 가져올 수 있습니다.&lt;/p&gt;</translation>
    </message>
</context>
<context>
    <name>ToolWizard2</name>
    <message>
        <source>Load</source>
        <translation>부하</translation>
    </message>
    <message>
        <source>Mass (kg)</source>
        <translation>질량 (kg)</translation>
    </message>
    <message>
        <source>Cog X (mm)</source>
        <translation>무게중심 X (mm)</translation>
    </message>
    <message>
        <source>Cog Y (mm)</source>
        <translation>무게중심 Y (mm)</translation>
    </message>
    <message>
        <source>Cog Z (mm)</source>
        <translation>무게중심 Z (mm)</translation>
    </message>
    <message>
        <source>Inertia X (kg.mm²)</source>
        <translation>관성 X (kg.mm²)</translation>
    </message>
    <message>
        <source>Inertia Y (kg.mm²)</source>
        <translation>관성 Y (kg.mm²)</translation>
    </message>
    <message>
        <source>Inertia Z (kg.mm²)</source>
        <translation>관성 Z (kg.mm²)</translation>
    </message>
    <message>
        <source>Translate</source>
        <translation>이동</translation>
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
        <translation>회전</translation>
    </message>
    <message>
        <source>Euler</source>
        <translation>오일러각</translation>
    </message>
    <message>
        <source>Quaternion</source>
        <translation>쿼터니언</translation>
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
        <translation>VL 공구</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>가져오기</translation>
    </message>
    <message>
        <source>&lt;p&gt;1.You can edit the tool manually or import it from the VL project.&lt;/p&gt;&lt;p&gt;2.Only robot holding tool is supported to import.&lt;/p&gt;</source>
        <translation>&lt;p&gt;1.공구를 직접 편집하거나 VL 프로젝트에서 가져올 수 있습니다.&lt;/p&gt;&lt;p&gt;2.로봇이 잡는 공구만 가져올 수 있습니다.&lt;/p&gt;</translation>
    </message>
</context>
<context>
    <name>ToolStep</name>
    <message>
        <source>Tray tool will be replaced, are you sure to import?</source>
        <translation>팔레트 공구가 교체됩니다. 가져오시겠습니까?</translation>
    </message>
    <message>
        <source>Invalid tool: %1</source>
        <translation>잘못된 공구: %1</translation>
    </message>
</context>
<context>
    <name>MoveToDialog</name>
    <message>
        <source>Move To</source>
        <translation>포인트로 이동</translation>
    </message>
    <message>
        <source>Move Type</source>
        <translation>이동 유형</translation>
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
        <translation>속도</translation>
    </message>
    <message>
        <source>Point</source>
        <translation>포인트</translation>
    </message>
    <message>
        <source>Offset</source>
        <translation>오프셋</translation>
    </message>
    <message>
        <source>None</source>
        <translation>없음</translation>
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
        <translation>주의: 조그와 이동은 선택한 좌표계와 하중에 따라 수행됩니다.</translation>
    </message>
    <message>
        <source>Current</source>
        <translation>현재</translation>
    </message>
    <message>
        <source>Target</source>
        <translation>목표</translation>
    </message>
    <message>
        <source>Confirm</source>
        <translation>확인</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>뒤로</translation>
    </message>
    <message>
        <source>Start Moving</source>
        <translation>이동 시작</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>닫기</translation>
    </message>
    <message>
        <source>&lt;h2&gt;Move Robot into Position: %1 &lt;/h2&gt;</source>
        <translation>&lt;h2&gt;로봇을 위치로 이동: %1 &lt;/h2&gt;</translation>
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
        <translation>로봇 전원이 꺼져 있습니다!</translation>
    </message>
    <message>
        <source>Can not read the robot posture!</source>
        <translation>로봇 자세를 읽을 수 없습니다!</translation>
    </message>
    <message>
        <source>Can not read the point %1 from the controller!</source>
        <translation>컨트롤러에서 포인트 %1을(를) 읽을 수 없습니다!</translation>
    </message>
    <message>
        <source>The offset is out of range!</source>
        <translation>오프셋이 범위를 벗어났습니다!</translation>
    </message>
    <message>
        <source>SDK Move Error</source>
        <translation>SDK 이동 오류</translation>
    </message>
    <message>
        <source>The controller link is lost, the move is stopped!</source>
        <translation>컨트롤러 연결이 끊어져 이동이 정지되었습니다!</translation>
    </message>
</context>
<context>
    <name>CalibrateSetWizard</name>
    <message>
        <source> is too close to each other, are you sure to calibrate?</source>
        <translation> 사이가 너무 가깝습니다. 보정하시겠습니까?</translation>
    </message>
    <message>
        <source>Accquire</source>
        <translation>획득</translation>
    </message>
    <message>
        <source>Move To</source>
        <translation>이동</translation>
    </message>
    <message>
        <source>Calibrate</source>
        <translation>보정</translation>
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
        <translation>팔레트 좌표계</translation>
    </message>
    <message>
        <source>Swithed to pallet wobj</source>
        <translation>팔레트 공작물 좌표계로 전환했습니다</translation>
    </message>
    <message>
        <source>Teach P1 at the origin corner, P2 along the pallet's X axis and P3 along its Y axis, as the picture shows.</source>
        <translation>그림과 같이 원점 모서리에서 P1, 팔레트 X축 방향으로 P2, Y축 방향으로 P3를 교시하십시오.</translation>
    </message>
    <message>
        <source>Use P4</source>
        <translation>P4 사용</translation>
    </message>
    <message>
        <source>swith to pallet toolset failed</source>
        <translation>팔레트 툴셋으로 전환하지 못했습니다</translation>
    </message>
</context>
<context>
    <name>WayPointWizard</name>
    <message>
        <source>&lt;p&gt;1.Please grab the work object to the origin point when accquiring P5,P6,P7.&lt;/p&gt;&lt;p&gt;2.The other work object's coordinates will be caculated according to the reference point.&lt;/p&gt;</source>
        <translation>&lt;p&gt;1.P5, P6, P7을 획득할 때 공작물을 원점 위치에서 잡으십시오.&lt;/p&gt;&lt;p&gt;2.다른 공작물의 좌표는 기준점에 따라 계산됩니다.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>Accquire</source>
        <translation>획득</translation>
    </message>
    <message>
        <source>Move To</source>
        <translation>이동</translation>
    </message>
    <message>
        <source>Approach P5</source>
        <translation>접근점 P5</translation>
    </message>
    <message>
        <source>Wobj P6</source>
        <translation>배치점 P6</translation>
    </message>
    <message>
        <source>Retract P7</source>
        <translation>후퇴점 P7</translation>
    </message>
    <message>
        <source>Swithed to pallet wobj</source>
        <translation>팔레트 공작물 좌표계로 전환했습니다</translation>
    </message>
    <message>
        <source>swith to pallet wobj failed</source>
        <translation>팔레트 공작물 좌표계로 전환하지 못했습니다</translation>
    </message>
</context>
<context>
    <name>PointAdjustWizard</name>
    <message>
        <source>Work Object Index</source>
        <translation>공작물 번호</translation>
    </message>
    <message>
        <source>Approach Point</source>
        <translation>접근점</translation>
    </message>
    <message>
        <source>Wobj Point</source>
        <translation>배치점</translation>
    </message>
    <message>
        <source>Retract Point</source>
        <translation>후퇴점</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>초기화</translation>
    </message>
    <message>
        <source>Check Access</source>
        <translation>도달성 점검</translation>
    </message>
    <message>
        <source>Accquire</source>
        <translation>획득</translation>
    </message>
    <message>
        <source>Move To</source>
        <translation>이동</translation>
    </message>
    <message>
        <source>Adjust</source>
        <translation>조정</translation>
    </message>
    <message>
        <source>Swithed to pallet wobj</source>
        <translation>팔레트 공작물 좌표계로 전환했습니다</translation>
    </message>
    <message>
        <source>swith to pallet wobj failed</source>
        <translation>팔레트 공작물 좌표계로 전환하지 못했습니다</translation>
    </message>
    <message>
        <source>Are you sure to adjust Approach Point %1?</source>
        <translation>%1번 접근점을 조정하시겠습니까?</translation>
    </message>
    <message>
        <source>Are you sure to adjust Wobj Point %1?</source>
        <translation>%1번 배치점을 조정하시겠습니까?</translation>
    </message>
    <message>
        <source>Are you sure to adjust Retract Point %1?</source>
        <translation>%1번 후퇴점을 조정하시겠습니까?</translation>
    </message>
    <message>
        <source>Are you sure to adjust Point %1?</source>
        <translation>%1번 위치를 조정하시겠습니까?</translation>
    </message>
    <message>
        <source>Checking...</source>
        <translation>점검 중...</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>취소</translation>
    </message>
    <message>
        <source>Wobj %1 : P5 to P6</source>
        <translation>공작물 %1 : P5에서 P6</translation>
    </message>
    <message>
        <source>Wobj %1 : P6 to P7</source>
        <translation>공작물 %1 : P6에서 P7</translation>
    </message>
    <message>
        <source>The path below can not be reached:
%1</source>
        <translation>다음 경로에 도달할 수 없습니다:
%1</translation>
    </message>
    <message>
        <source>Check is passed!</source>
        <translation>점검을 통과했습니다!</translation>
    </message>
</context>
<context>
    <name>PreviewWizard</name>
    <message>
        <source>Form</source>
        <translation>폼</translation>
    </message>
</context>
<context>
    <name>tFileDialog</name>
    <message>
        <source>Dialog</source>
        <translation>대화 상자</translation>
    </message>
    <message>
        <source>FileName:</source>
        <translation>파일 이름:</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>취소</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>확인</translation>
    </message>
    <message>
        <source>please insert the USB disk</source>
        <translation>USB 디스크를 삽입하십시오</translation>
    </message>
</context>
<context>
    <name>ImExportDialog</name>
    <message>
        <source>Import/Export</source>
        <translation>가져오기/내보내기</translation>
    </message>
    <message>
        <source>Select File</source>
        <translation>파일 선택</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>열기</translation>
    </message>
    <message>
        <source>Import Options</source>
        <translation>가져오기 옵션</translation>
    </message>
    <message>
        <source>If have duplicate elements in the imported content, choose one of the following.The new element is renamed by default,you can also choose to override existing elements or not import new elements.</source>
        <translation>가져온 내용에 중복된 요소가 있으면 다음 중 하나를 선택하십시오. 기본적으로 새 요소의 이름을 변경하며, 기존 요소를 덮어쓰거나 새 요소를 가져오지 않도록 선택할 수도 있습니다.</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>이름 바꾸기</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>덮어쓰기</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>버리기</translation>
    </message>
    <message>
        <source>Select Items</source>
        <translation>항목 선택</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>모두 선택</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>이름</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>설명</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>취소</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>확인</translation>
    </message>
    <message>
        <source>Open XML file</source>
        <translation>XML 파일 열기</translation>
    </message>
    <message>
        <source>XML (*.xml)</source>
        <translation>XML (*.xml)</translation>
    </message>
    <message>
        <source>Save XML file</source>
        <translation>XML 파일 저장</translation>
    </message>
    <message>
        <source>The file %1 is too large (%2 MB); a pallet file has at most %3 MB.</source>
        <translation>파일 %1이(가) 너무 큽니다(%2 MB). 팔레트 파일은 최대 %3 MB입니다.</translation>
    </message>
    <message>
        <source>The file %1 cannot be read as a pallet file:
%2</source>
        <translation>파일 %1을(를) 팔레트 파일로 읽을 수 없습니다:
%2</translation>
    </message>
    <message>
        <source>The file %1 does not hold a list of pallets.</source>
        <translation>파일 %1에 팔레트 목록이 없습니다.</translation>
    </message>
    <message>
        <source>The pallet %1 in the file %2 has a missing or wrong value at "%3". Nothing is imported from this file.</source>
        <translation>파일 %2의 팔레트 %1에서 "%3" 값이 없거나 잘못되었습니다. 이 파일에서는 아무것도 가져오지 않습니다.</translation>
    </message>
    <message>
        <source>The pallet name %1 is used twice in the file %2. Nothing is imported from this file.</source>
        <translation>팔레트 이름 %1이(가) 파일 %2에서 두 번 사용되었습니다. 이 파일에서는 아무것도 가져오지 않습니다.</translation>
    </message>
    <message>
        <source>Import success!</source>
        <translation>가져오기 성공!</translation>
    </message>
    <message>
        <source>Export path can not be empty!</source>
        <translation>내보내기 경로는 비워 둘 수 없습니다!</translation>
    </message>
    <message>
        <source>The pallets could not be written to %1:
%2</source>
        <translation>팔레트를 %1에 쓸 수 없습니다:
%2</translation>
    </message>
    <message>
        <source>Export success to %1!</source>
        <translation>%1(으)로 내보내기 성공!</translation>
    </message>
    <message>
        <source>Tray %1 was not stored on the controller, it will be lost at the next reload!</source>
        <translation>팔레트 %1이(가) 컨트롤러에 저장되지 않았습니다. 다음 다시 불러오기 때 사라집니다!</translation>
    </message>
</context>
</TS>