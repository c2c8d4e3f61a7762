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
</TS>