/* Stored bytes through an operation of one operand and back into stored bytes. */
#include "fuzz/input.h"
#include "fuzz/sides.h"
#include "fuzz/target.h"

using namespace qzoci::fuzz;
using qzoci::test::Operands;
using qzoci::test::Operation;
using qzoci::test::SideEffect;

int LLVMFuzzerTestOneInput(const ub1* data, size_t size) {
    static const Operation& unpack = qzoci::test::operation("QZCICalcNumFromNumber");
    static const Operation& pack = qzoci::test::operation("QZCICalcNumToNumber");
    Input input({data, size});
    const Operation& operation = chosen(operations_on_one(), input.byte());
    const Setting setting = setting_of(input.byte());
    qzoci::limbs::force_level(setting.level);

    Operands operands = {};
    operands.stored = input.stored();
    const SideEffect unpacked = same_on_all_sides(unpack, operands);
    if (unpacked.status != OCI_SUCCESS) {
        return 0;
    }
    operands.a = unpacked.result;
    operands.b = unpacked.result;
    operands.integer = static_cast<sb8>(input.integer(sizeof operands.integer));
    operands.text_size = input.integer(2) % longest_text;
    operands.result_is = setting.result_is;
    operands.a = same_on_all_sides(operation, operands).result;
    operands.result_is = qzoci::test::ResultIs::own_record;
    same_on_all_sides(pack, operands);
    return 0;
}
