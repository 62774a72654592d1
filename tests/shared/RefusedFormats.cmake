# Calls that must not compile, each with the diagnostic that must say so. The compiler is the program under test.

# orvik_refused_format(name diagnostic arguments): the format and its arguments.
function(orvik_refused_format name diagnostic ARGUMENTS)
    set(source "${CMAKE_CURRENT_BINARY_DIR}/refused/${name}.cpp")
    configure_file(RefusedFormat.cpp.in "${source}" @ONLY)
    add_test(NAME shared.WideFormat.Refused_${name}
        COMMAND ${CMAKE_CXX_COMPILER} -std=c++20 -fsyntax-only "-I${CMAKE_SOURCE_DIR}/src" "${source}")
    set_tests_properties(shared.WideFormat.Refused_${name} PROPERTIES
        PASS_REGULAR_EXPRESSION "${diagnostic}" LABELS unit TIMEOUT 120)
endfunction()

orvik_refused_format(MissingArgument FormatHasMoreConversionsThanArguments [[L"%d"]])
orvik_refused_format(SecondArgumentMissing FormatHasMoreConversionsThanArguments [[L"%d %s", 1]])
orvik_refused_format(SurplusArgument FormatHasFewerConversionsThanArguments [[L"text", 1]])
orvik_refused_format(SurplusAfterPercent FormatHasFewerConversionsThanArguments [[L"100 %%", 1]])
orvik_refused_format(TextForNumber ArgumentDoesNotFitItsConversion [[L"%d", L"text"]])
orvik_refused_format(NumberForText ArgumentDoesNotFitItsConversion [[L"%s", 1]])
orvik_refused_format(NarrowForWide ArgumentDoesNotFitItsConversion [[L"%s", "narrow"]])
orvik_refused_format(WideForNarrow ArgumentDoesNotFitItsConversion [[L"%S", L"wide"]])
orvik_refused_format(WideForNarrowByModifier ArgumentDoesNotFitItsConversion [[L"%hs", L"wide"]])
orvik_refused_format(LongNumberForInt ArgumentDoesNotFitItsConversion [[L"%d", 1LL]])
orvik_refused_format(IntForLongNumber ArgumentDoesNotFitItsConversion [[L"%I64d", 1]])
orvik_refused_format(IntForReal ArgumentDoesNotFitItsConversion [[L"%f", 1]])
orvik_refused_format(NumberForPointer ArgumentDoesNotFitItsConversion [[L"%p", 1u]])
orvik_refused_format(Structure ArgumentDoesNotFitItsConversion [[L"%d", Text{}]])
orvik_refused_format(CountedWrite ArgumentDoesNotFitItsConversion [[L"%n", static_cast<int*>(nullptr)]])
orvik_refused_format(StructureForUnknownLetter ArgumentDoesNotFitItsConversion [[L"%y", Text{}]])
orvik_refused_format(UnfinishedConversion ArgumentDoesNotFitItsConversion [[L"100 %"]])
orvik_refused_format(WidthFromArgument WidthMustStandInTheFormat [[L"%*d", 1, 2]])
orvik_refused_format(TextOfTheRunTime "constant expression" [[static_cast<const wchar_t*>(g_text), 1]])

# The same command with a good call: what fails above fails for its format alone.
set(ARGUMENTS [[L"%d %s %S", 1, L"wide", "narrow"]])
configure_file(RefusedFormat.cpp.in "${CMAKE_CURRENT_BINARY_DIR}/refused/Accepted.cpp" @ONLY)
add_test(NAME shared.WideFormat.AcceptedFormat_Compiles
    COMMAND ${CMAKE_CXX_COMPILER} -std=c++20 -fsyntax-only "-I${CMAKE_SOURCE_DIR}/src"
        "${CMAKE_CURRENT_BINARY_DIR}/refused/Accepted.cpp")
set_tests_properties(shared.WideFormat.AcceptedFormat_Compiles PROPERTIES LABELS unit TIMEOUT 120)
