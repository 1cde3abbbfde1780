/* Lines of any level number, as a C host may write them; in C++ the enumeration holds no other values than
 * its own. */
#ifndef QZOCI_TESTS_LOG_LEVEL_NUMBER_H
#define QZOCI_TESTS_LOG_LEVEL_NUMBER_H

#ifdef __cplusplus
extern "C" {
#endif

void write_line_of_level_number(int number);
int is_level_number_on(int number);

#ifdef __cplusplus
}
#endif

#endif /* QZOCI_TESTS_LOG_LEVEL_NUMBER_H */
