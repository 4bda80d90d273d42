# The rules above the two seams, on fakes: the same cases with every system. Included by the tests of Linux and of Windows.
# The files of a group are compiled as one.
set(corvane_unit_sources)
function(corvane_unit_group name)
    list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../)
    set_source_files_properties(${ARGN} PROPERTIES UNITY_GROUP ${name})
    set(corvane_unit_sources ${corvane_unit_sources} ${ARGN} PARENT_SCOPE)
endfunction()

corvane_unit_group(address_editing
    unit/DnsEditingTest.cpp
    unit/GatewayEditingTest.cpp
    unit/IpEditingTest.cpp
    unit/IpRemovalTest.cpp
    unit/PrefixAndMaskTest.cpp)
corvane_unit_group(address_operations
    unit/AddressOperationsTest.cpp)
corvane_unit_group(apply_preset
    unit/ApplyPresetTest.cpp)
corvane_unit_group(commands
    unit/CommandsTest.cpp)
corvane_unit_group(inventory
    unit/AdapterRegistryTest.cpp
    unit/AdapterStatusTest.cpp
    unit/InterfaceIndexTest.cpp
    unit/LeaseTimesTest.cpp
    unit/RefreshTest.cpp
    unit/TcpipConfigTest.cpp
    unit/TimeZoneOffsetTest.cpp)
corvane_unit_group(ip_entry
    unit/IPAddressEntryMovesTest.cpp
    unit/IPAddressEntryTest.cpp
    unit/IPAddressEntryTypingTest.cpp)
corvane_unit_group(mac
    unit/NetworkFolderDialogTest.cpp
    unit/RestartConnectionTest.cpp
    unit/SetConnectionStateTest.cpp
    unit/WriteNetworkAddressTest.cpp)
corvane_unit_group(mac_entry
    unit/MacEntryMovesTest.cpp
    unit/MacEntryTest.cpp
    unit/MacEntryTypingTest.cpp
    unit/VendorEntryTest.cpp
    unit/VendorSearchTest.cpp)
corvane_unit_group(platform
    unit/AddressTest.cpp
    unit/IphlpApiTest.cpp
    unit/PlatformTest.cpp
    unit/RegErrorTextTest.cpp
    unit/RegistryOperationsTest.cpp
    unit/TextTest.cpp)
corvane_unit_group(preset_editing
    unit/PresetCommandsTest.cpp
    unit/PresetEditingTest.cpp
    unit/PresetSavingTest.cpp)
corvane_unit_group(presets
    unit/PresetsFileTest.cpp
    unit/SavePresetsTest.cpp)
corvane_unit_group(report
    unit/TextReportTest.cpp)
corvane_unit_group(startup
    unit/ActionOutcomesTest.cpp
    unit/ActionsTest.cpp
    unit/AdviceTest.cpp
    unit/CommandLineTest.cpp
    unit/ConsoleSeatTest.cpp
    unit/FaultReportTest.cpp
    unit/StartupTest.cpp
    unit/VersionTest.cpp)
corvane_unit_group(code_page
    unit/CodePageTest.cpp)
corvane_unit_group(tcpip
    unit/DnsServersTest.cpp
    unit/RegistryGatewayTest.cpp
    unit/RegistryIpAddressTest.cpp
    unit/WriteTcpipSettingsTest.cpp)
corvane_unit_group(vendors
    unit/RandomMacTest.cpp
    unit/VendorListTest.cpp)
corvane_unit_group(window_commands
    unit/CommandGateTest.cpp
    unit/DhcpOperationsTest.cpp
    unit/EnableOrDisableTest.cpp
    unit/MacChangeTest.cpp
    unit/MakerTest.cpp
    unit/OpenPagesTest.cpp)
corvane_unit_group(window_rules
    unit/ConnectionListTest.cpp
    unit/ConnectionRowsTest.cpp
    unit/DetailsTest.cpp
    unit/TrafficTest.cpp
    unit/TrayTest.cpp)

# Logic of the Windows back-end that needs no Windows.
corvane_unit_group(windows
    unit/AddressContextsTest.cpp)
corvane_unit_group(registry_values
    unit/RegistryValuesTest.cpp)
