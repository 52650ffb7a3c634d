/* SPDX-License-Identifier: MIT
 * Copyright (c) 2026 The ScanReader developers
 *
 * A host in C89 that prints what read_records.cpp prints, through the C interface, and reads batches of another size.
 *
 *   read_records_c FOLDER
 */
#include <ScanReader/qsb.h>

#include <stdio.h>
#include <string.h>

#define BATCH 777

static uint64_t sum;

static void start_sum(void)
{
    sum = ((uint64_t)0xCBF29CE4u << 32) | 0x84222325u;
}

static void add(uint64_t value, int bytes)
{
    const uint64_t prime = ((uint64_t)0x100u << 32) | 0x1B3u;
    int i;
    for (i = 0; i < bytes; ++i) {
        sum ^= (value >> (8 * i)) & 0xFF;
        sum *= prime;
    }
}

/* A number that is none counts as one and the same. */
static void add_double(double value)
{
    uint64_t bits = (uint64_t)0x7FF80000u << 32;
    if (value == value) memcpy(&bits, &value, sizeof bits);
    add(bits, 8);
}

static void add_point(const qsb_point* point)
{
    add_double(point->x);
    add_double(point->y);
    add_double(point->z);
    add(point->red, 1);
    add(point->green, 1);
    add(point->blue, 1);
    add(point->intensity, 2);
    add(point->noise, 2);
    add(point->row, 4);
    add(point->column, 4);
}

static void print_sum(void)
{
    printf("%08lx%08lx", (unsigned long)(sum >> 32), (unsigned long)(sum & 0xFFFFFFFFu));
}

static int print_facts(qsb_reader* reader)
{
    qsb_facts facts;
    int i;
    if (qsb_get_facts(reader, &facts, sizeof facts) != QSB_OK || facts.reserved != 0) return 1;
    start_sum();
    for (i = 0; i < 16; ++i) add_double(facts.transformation[i]);
    add_double(facts.instrument_height);
    /* No test scan is so large that these numbers do not fit. */
    printf("%lu points, grid %lu x %lu, content %lu, pose ", (unsigned long)facts.points, (unsigned long)facts.rows,
           (unsigned long)facts.columns, (unsigned long)facts.content);
    print_sum();
    return 0;
}

static int print_records(qsb_reader* reader)
{
    static qsb_point points[BATCH];
    size_t count, i;
    unsigned long delivered = 0;
    start_sum();
    while (qsb_read(reader, points, sizeof points[0], BATCH, &count) == QSB_OK && count > 0) {
        for (i = 0; i < count; ++i) {
            if (points[i].reserved != 0) return 1;
            add_point(&points[i]);
        }
        delivered += (unsigned long)count;
    }
    printf(", %lu read, ", delivered);
    print_sum();
    printf(", %s\n", qsb_last_message(reader));
    return 0;
}

static int print_scan(const char* path, const char* name)
{
    char message[QSB_MESSAGE_SIZE];
    qsb_reader* reader = qsb_open(path, message, sizeof message);
    int failed = 0;
    printf("%s: ", name);
    if (reader == NULL)
        printf("%s\n", message);
    else
        failed = print_facts(reader) || print_records(reader);
    qsb_close(reader);
    return failed;
}

int main(int argc, char* argv[])
{
    char name[512], path[2048];
    FILE* list;
    int files = 0;
    if (argc != 2 || strlen(argv[1]) > 1024) return 2;
    if (qsb_version() >> 16 != QSB_VERSION >> 16) return 2;
    sprintf(path, "%s/list.txt", argv[1]);
    list = fopen(path, "rb");
    if (list == NULL) return 1;
    while (fgets(name, sizeof name, list) != NULL) {
        name[strcspn(name, "\n")] = '\0';
        sprintf(path, "%s/%s", argv[1], name);
        if (print_scan(path, name) != 0) return 1;
        ++files;
    }
    fclose(list);
    return files > 0 ? 0 : 1;
}
