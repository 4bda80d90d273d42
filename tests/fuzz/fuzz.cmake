corvane_test(NAME fuzz_seeds_test
    SOURCES
        fuzz/CommandLineFuzzer.cpp
        fuzz/DhcpHookFuzzer.cpp
        fuzz/DhcpRequestFuzzer.cpp
        fuzz/NetlinkAnswerFuzzer.cpp
        fuzz/PresetsFileFuzzer.cpp
        fuzz/RegFileFuzzer.cpp
        fuzz/SeedsTest.cpp
        fuzz/VendorFileFuzzer.cpp
    LIBS corvane_dhcp corvane_netlink corvane_store)

corvane_test(NAME kernel_answers_test NETNS
    SOURCES
        fuzz/KernelAnswersTest.cpp
        fuzz/NetlinkAnswerFuzzer.cpp
        netns/NetnsSupport.cpp
    LIBS corvane_netlink)

corvane_test(NAME startup_fuzz_test SOURCES fuzz/StartupFuzzTest.cpp LIBS corvane_fakes)

# Each fuzzer that scripts/fuzz --build made, for twenty seconds. One runs at a time, beside tests that mostly wait.
if(NOT CORVANE_SANITIZE)
    file(GLOB targets CONFIGURE_DEPENDS RELATIVE ${CMAKE_CURRENT_SOURCE_DIR}/fuzz/seeds
        ${CMAKE_CURRENT_SOURCE_DIR}/fuzz/seeds/*)
    foreach(target IN LISTS targets)
        add_test(NAME fuzz.${target} COMMAND ${CMAKE_SOURCE_DIR}/scripts/fuzz --once 20 ${target})
        set_tests_properties(fuzz.${target} PROPERTIES
            LABELS fuzz TIMEOUT 120 COST 1000 RESOURCE_LOCK fuzzer ENVIRONMENT LC_ALL=C.UTF-8)
    endforeach()
endif()
