#include "tests/elementary/log_texts.h"

namespace qzoci::test {
namespace {

constexpr ProvokedText texts[] = {
    /* ---- Entry traces ---- */
    {"QZCICalcNumSqrt D:1", "2|call function QZCICalcNumSqrt with number:A, result:R"},
    {"QZCICalcNumSin D:0", "2|call function QZCICalcNumSin with number:A, result:R"},
    {"QZCICalcNumCos D:0", "2|call function QZCICalcNumCos with number:A, result:R"},
    {"QZCICalcNumTan D:0", "2|call function QZCICalcNumTan with number:A, result:R"},
    {"QZCICalcNumSinWithRound D:0", "2|call QZCICalcNumSinWithRound with params number:A, result:R"},
    {"QZCICalcNumCosWithRound D:0", "2|call QZCICalcNumCosWithRound with params number:A, result:R"},
    {"QZCICalcNumTanWithRound D:0", "2|call function QZCICalcNumTanWithRound with number:A, result:R"},
    {"QZCICalcNumAtan D:0", "2|call function QZCICalcNumAtan with number:A, result:R"},
    {"QZCICalcNumAsin D:1", "2|call function QZCICalcNumAsin with number:A, result:R"},
    {"QZCICalcNumAcos D:1", "2|call function QZCICalcNumAcos with number:A, result:R"},
    {"QZCICalcNumAtan2 D:0 D:1", "2|call function QZCICalcNumAtan with number:A, number2:B, result:R"},
    {"QZCICalcNumExp D:0", "2|call function QZCICalcNumExp with number:A, result:R"},
    {"QZCICalcNumSinh D:0", "2|call function QZCICalcNumSinh with number:A, result:R"},
    {"QZCICalcNumCosh D:0", "2|call function QZCICalcNumCosh with number:A, result:R"},
    {"QZCICalcNumTanh D:0", "2|call function QZCICalcNumTanh with number:A, result:R"},
    {"QZCICalcNumLn D:1", "2|call function QZCICalcNumLn with number:A, result:R"},
    {"QZCICalcNumIntPower D:2 -3", "2|call function QZCICalcNumLn with base:A, exp:-3, result:R"},
    {"QZCICalcNumPower D:2 D:0", "2|call function QZCICalcNumPower with number:A, exp:B, result:R"},

    /* ---- Exit traces ---- */
    {"QZCICalcNumSqrt D:1", "2|function QZCICalcNumSqrt return with status 0"},
    {"QZCICalcNumSin D:0", "2|function QZCICalcNumSin return with status 0"},
    {"QZCICalcNumCos D:0", "2|function QZCICalcNumCos return with status 0"},
    {"QZCICalcNumTan D:0", "2|function QZCICalcNumTan return with status 0"},
    {"QZCICalcNumSinWithRound D:0", "2|function QZCICalcNumSinWithRound return with status 0"},
    {"QZCICalcNumCosWithRound D:0", "2|function QZCICalcNumCosWithRound return with status 0"},
    {"QZCICalcNumTanWithRound D:0", "2|function QZCICalcNumTanWithRound return with status 0"},
    {"QZCICalcNumAtan D:0", "2|function QZCICalcNumAtan return with status 0"},
    {"QZCICalcNumAsin D:2", "2|function QZCICalcNumAsin return with status -1"},
    {"QZCICalcNumAcos D:1", "2|function QZCICalcNumAcos return with status 0"},
    {"QZCICalcNumAtan2 D:0 D:1", "2|function QZCICalcNumAtan2 return with status 0"},
    {"QZCICalcNumExp N", "2|function QZCICalcNumSqrt return with status -2"},
    {"QZCICalcNumSinh D:0", "2|function QZCICalcNumSinh return with status 0"},
    {"QZCICalcNumCosh D:0", "2|function QZCICalcNumCosh return with status 0"},
    {"QZCICalcNumTanh D:0", "2|function QZCICalcNumTanh return with status 0"},
    {"QZCICalcNumLn D:-1", "2|function QZCICalcNumLn return with status -1"},
    {"QZCICalcNumIntPower D:2 -3", "2|function QZCICalcNumIntPower return with status 0"},
    {"QZCICalcNumPower D:2 D:0", "2|function QZCICalcNumPower return with status 0"},

    /* ---- Square root ---- */
    {"QZCICalcNumSqrt D:0", "2|QZCICalcNumSqrt number is zero"},
    {"QZCICalcNumSqrt D:-4", "5|QZCICalcNumSqrt: the number is negitive"},
    {"QZCICalcNumSqrt D:inf", "5|QZCICalcNumSqrt: the number is positive infinity"},
    {"QZCICalcNumSqrt R:1,0,18,19,0,z19.4.z20", "5|QZCICalcNumSqrt: QZCICalcNumDiv error"},
    {"QZCICalcNumSqrt D:4", "2|QZCICalcNumSqrt: Get a guess"},
    {"QZCICalcNumSqrtFirst D:0", "5|QZCICalcNumSqrtFirst get a malformed record"},

    /* ---- Sine, cosine, tangent ---- */
    {"QZCICalcNumSin R:1,0,19,40,0,z19.7.z20", "5|QZCICalcNumSin error in Mod"},
    {"QZCICalcNumSin R:5,0,19,19,0,z19.1.z20", "5|QZCICalcNumSin error in Sub"},
    {"QZCICalcNumSin R:1,0,30,10,0,z40", "5|QZCICalcNumSin error in Mul"},
    {"QZCICalcNumSin R:0,0,19,19,0,z19.1.z20", "5|QZCICalcNumSin error in Add"},
    {"QZCICalcNumCos R:2,0,19,19,0,z19.7.z20", "5|QZCICalcNumCos call QZCICalcNumAdd error"},
    {"QZCICalcNumTan R:5,0,19,19,0,z19.1.z20", "5|QZCICalcNumTan call QZCICalcNumSin error"},
    {"QZCICalcNumTan R:2,0,19,19,0,z19.7.z20", "5|QZCICalcNumTan call QZCICalcNumCos error"},
    {"QZCICalcNumTan R:1,0,21,22,0,z21.4200000000.4200000000.z17",
     "5|QZCICalcNumTan call QZCICalcNumDiv error"},
    {"QZCICalcNumTan R:-1,0,19,39,0,z19.1.57079632.67948966.19231321.69163975.14420985.84699687.55291048."
     "74722961.53908203.14310449.93140174.12671058.53399107.40432566.41153323.54692230.47752911.15862679."
     "70406424.5587251",
     "2|QZCICalcNumTan get cos(number) is zero, set infinity"},
    {"QZCICalcNumSinWithRound R:5,0,19,19,0,z19.1.z20", "5|QZCICalcNumSinWithRound error in QZCICalcNumSin"},
    {"QZCICalcNumCosWithRound R:2,0,19,19,0,z19.7.z20", "5|QZCICalcNumCosWithRound error in QZCICalcNumCos"},
    {"QZCICalcNumTanWithRound R:5,0,19,19,0,z19.1.z20",
     "5|QZCICalcNumTanWithRound call QZCICalcNumSin error"},
    {"QZCICalcNumTanWithRound R:2,0,19,19,0,z19.7.z20",
     "5|QZCICalcNumTanWithRound call QZCICalcNumCos error"},
    {"QZCICalcNumTanWithRound R:1,0,21,22,0,z21.4200000000.4200000000.z17",
     "5|QZCICalcNumTanWithRound call QZCICalcNumDiv error"},
    {"QZCICalcNumTanWithRound D:1.5707963267948966192313216916397514420985846996875529",
     "2|QZCICalcNumTanWithRound get cos(number) is zero, set infinity"},

    /* ---- Inverse trigonometric functions ---- */
    {"QZCICalcNumAtan D:1e80", "2|QZCICalcNumAtan get a large number, result is pi/2"},
    {"QZCICalcNumAtan R:1,0,30,10,0,z20.60000000.z19", "5|QZCICalcNumAtan call NumMul error"},
    {"QZCICalcNumAtan R:5,0,26,26,0,z26.1000000.z13", "5|QZCICalcNumAtan call NumAdd error"},
    {"QZCICalcNumAtan R:1,0,17,18,0,z17.2487606477.2734287795.z21", "5|QZCICalcNumAtan call NumSqrt error"},
    {"QZCICalcNumAsin R:1,0,30,10,0,z20.40000000.z19", "5|QZCICalcNumAsin call QZCICalcNumMul error"},
    {"QZCICalcNumAsin R:1,0,20,20,0,z20.3767486127.z19", "5|QZCICalcNumAsin call QZCICalcNumSqrt error"},
    {"QZCICalcNumAsin R:1,0,20,21,0,z20.99999999.4294967295.z18",
     "5|QZCICalcNumAsin call QZCICalcNumDiv error"},
    {"QZCICalcNumAsin D:1.5", "5|input number is too large"},
    {"QZCICalcNumAcos D:1.5", "5|QZCICalcNumAcos call QZCICalcNumAsin error"},
    {"QZCICalcNumAtan2 D:0 D:0", "5|QZCICalcNumAtan2 error with number1 is zero and number2 is zero"},
    {"QZCICalcNumAtan2 D:1 R:1,0,19,60,0,z19.4.z20", "5|QZCICalcNumAtan2 call QZCICalcNumDiv error"},
    {"QZCICalcNumAtan2 R:1,0,17,18,0,z17.2487606477.2734287795.z21 D:1",
     "5|QZCICalcNumAtan2 call QZCICalcNumAtan error"},

    /* ---- Exponential and hyperbolic functions ---- */
    {"QZCICalcNumExp D:1", "2|QZCICalcNumExp:times_exponent_div_2:4"},
    {"QZCICalcNumExp R:1,0,19,60,0,z19.4.z20", "5|QZCICalcNumExp: QZCICalcNumDiv error"},
    {"QZCICalcNumSinh R:1,0,30,10,0,z40", "5|QZCICalcNumSinh call QZCICalcNumExp error"},
    {"QZCICalcNumCosh R:1,0,30,10,0,z40", "5|QZCICalcNumCosh call QZCICalcNumExp error"},
    {"QZCICalcNumTanh R:1,0,30,10,0,z40", "5|QZCICalcNumTanh call QZCICalcNumExp error"},

    /* ---- Logarithm and powers ---- */
    {"QZCICalcNumLn D:-1", "5|QZCICalcNumLn with error number:A, negitive"},
    {"QZCICalcNumLn R:0,0,19,19,0,z19.2.z20", "5|QZCICalcNumLn call QZCICalcNumSqrt error"},
    {"QZCICalcNumLn R:1,0,19,40,0,z19.1.z20", "5|QZCICalcNumLn call QZCICalcNumAdd error"},
    {"QZCICalcNumLn R:1,0,20,21,0,z20.3512695500.500000000.z18", "5|QZCICalcNumLn call QZCICalcNumDiv error"},
    {"QZCICalcNumLn R:1,0,20,20,0,z20.200000000.z19", "5|QZCICalcNumLn call QZCICalcNumMul error"},
    {"QZCICalcNumIntPower R:1,0,30,10,0,z40 4", "5|QZCICalcNumIntPower call QZCICalcNumMul error"},
    {"QZCICalcNumIntPower D:0 -2", "5|QZCICalcNumIntPower call QZCICalcNumDiv error"},
    {"QZCICalcNumPower D:-inf D:inf", "5|QZCICalcNumPower meet error infinity number"},
    {"QZCICalcNumPower D:-2 D:0.5", "5|QZCICalcNumPower error in (-x)^t.001 is error"},
    {"QZCICalcNumPower R:0,0,19,19,0,z19.2.z20 D:3", "5|QZCICalcNumLn error in QZCICalcNumLn"},
    {"QZCICalcNumPower D:2 R:1,0,19,60,0,z19.4.z20", "5|QZCICalcNumLn error in QZCICalcNumMul"},
};

} // namespace

void PrintTo(const ProvokedText& text, std::ostream* out) {
    *out << text.request << " -> " << text.rendered;
}

std::span<const ProvokedText> provoked_texts() {
    return texts;
}

} // namespace qzoci::test
