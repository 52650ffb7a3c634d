/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The ScanReader developers
 *
 * Reads a scan through the installed C library, in C89, and prints how many points came. Exit code 0 only
 * when that is what the file announces and the end was reached without an error.
 */
#include <ScanReader/qsb.h>

#include <stdio.h>
#include <string.h>

int main(int argc, char* argv[])
{
    static qsb_point points[1000];
    char message[QSB_MESSAGE_SIZE];
    qsb_reader* reader;
    qsb_facts facts;
    uint64_t delivered = 0;
    size_t count;
    int good;
    if (argc != 2) return 2;
    reader = qsb_open(argv[1], message, sizeof message);
    if (reader == NULL) {
        fprintf(stderr, "%s\n", message);
        return 1;
    }
    while (qsb_read(reader, points, sizeof points[0], 1000, &count) == QSB_OK && count > 0)
        delivered += count;
    printf("%lu\n", (unsigned long)delivered);
    good = qsb_get_facts(reader, &facts, sizeof facts) == QSB_OK && facts.points == delivered &&
           strcmp(qsb_last_message(reader), "End-of-file") == 0;
    qsb_close(reader);
    return good ? 0 : 1;
}
