/* A C program using the installed headers and library. */
#include <stdio.h>
#include <string.h>
#include <tarvo/tarvo.h>

int main(void) {
    char text[64];
    if (for_lodrik_version_(text, sizeof text) != 3) return 1;
    if (strncmp(text, "Tarvo Fortran portability library", 33) != 0) return 2;
    if (lnblnk_("ab  ", 4) != 2) return 3;
    printf("consumer_c: ok, %.*s\n", (int)sizeof text, text);
    return 0;
}
