#pragma once

/// API_FOR_EACH(Row, a, b, c) expands to Row(a) Row(b) Row(c), for up to 256 arguments. A macro
/// cannot call itself; API_FOR_EACH_AGAIN is only named here and expanded by the next rescan.
#define API_FOR_EACH(Row, ...) __VA_OPT__(API_FOR_EACH_SCAN(API_FOR_EACH_STEP(Row, __VA_ARGS__)))
#define API_FOR_EACH_STEP(Row, First, ...) \
    Row(First) __VA_OPT__(API_FOR_EACH_AGAIN API_FOR_EACH_PARENS(Row, __VA_ARGS__))
#define API_FOR_EACH_AGAIN() API_FOR_EACH_STEP
#define API_FOR_EACH_PARENS ()

#define API_FOR_EACH_SCAN(...) \
    API_FOR_EACH_SCAN4(API_FOR_EACH_SCAN4(API_FOR_EACH_SCAN4(API_FOR_EACH_SCAN4(__VA_ARGS__))))
#define API_FOR_EACH_SCAN4(...) \
    API_FOR_EACH_SCAN3(API_FOR_EACH_SCAN3(API_FOR_EACH_SCAN3(API_FOR_EACH_SCAN3(__VA_ARGS__))))
#define API_FOR_EACH_SCAN3(...) \
    API_FOR_EACH_SCAN2(API_FOR_EACH_SCAN2(API_FOR_EACH_SCAN2(API_FOR_EACH_SCAN2(__VA_ARGS__))))
#define API_FOR_EACH_SCAN2(...) \
    API_FOR_EACH_SCAN1(API_FOR_EACH_SCAN1(API_FOR_EACH_SCAN1(API_FOR_EACH_SCAN1(__VA_ARGS__))))
#define API_FOR_EACH_SCAN1(...) __VA_ARGS__
