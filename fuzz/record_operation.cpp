/* Records of any limbs, flags and positions through every operation on records. */
#include "fuzz/input.h"
#include "fuzz/sides.h"
#include "fuzz/target.h"

using namespace qzoci::fuzz;
using qzoci::test::Operands;
using qzoci::test::Operation;

int LLVMFuzzerTestOneInput(const ub1* data, size_t size) {
    Input input({data, size});
    const Operation& operation = chosen(operations_on_records(), input.byte());
    const Setting setting = setting_of(input.byte());
    qzoci::limbs::force_level(setting.level);

    Operands operands = {};
    operands.integer = static_cast<sb8>(input.integer(sizeof operands.integer));
    operands.text_size = input.integer(2) % longest_text;
    operands.result_is = setting.result_is;
    operands.a = input.record();
    operands.b = input.record();
    same_on_all_sides(operation, operands);
    return 0;
}
