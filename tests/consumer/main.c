/* Reads the world file that is named, saves into the folder that is named, and provokes errors;
   prints the JSON of the file and of its sources. Non-zero when something is not as it should be. */

#include <mapanchor.h>

#include <math.h>
#include <stdio.h>
#include <string.h>

static int failures = 0;

#define CHECK(condition)                                                              \
    do {                                                                              \
        if (!(condition)) {                                                           \
            fprintf(stderr, "main.c:%d: %s; last error: %s\n", __LINE__, #condition,  \
                    mapanchor_last_error());                                          \
            ++failures;                                                               \
        }                                                                             \
    } while (0)

static void check_reading(mapanchor_reading *reading) {
    mapanchor_reference reference = {.size = sizeof(mapanchor_reference)};
    double x = 10, y = 20;
    CHECK(mapanchor_reading_status(reading) == MAPANCHOR_OK);
    CHECK(mapanchor_reading_error(reading)[0] == '\0');
    CHECK(mapanchor_reading_reference(reading, &reference) == MAPANCHOR_OK);
    CHECK(reference.has_affine && reference.affine[0] == 2 && reference.affine[2] == 10 && reference.affine[5] == 50);
    CHECK(reference.pixel_anchor == MAPANCHOR_CORNER && reference.fit == MAPANCHOR_FIT_AFFINE);
    CHECK(reference.epsg == 4326 && strcmp(reference.kind, "WLD") == 0 && strstr(reference.wkt, "WGS"));
    CHECK(mapanchor_to_world(reading, &x, &y) == MAPANCHOR_OK && x == 30 && y == 10);
    CHECK(mapanchor_to_pixel(reading, &x, &y) == MAPANCHOR_OK && fabs(x - 10) < 1e-9 && fabs(y - 20) < 1e-9);
}

/* A program that knows less, and one that knows more, than this library. */
static void check_versions(const char *file, mapanchor_reading *reading) {
    struct {
        mapanchor_read_options known;
        int32_t new_member[2];
    } options = {{.size = sizeof options}, {0, 0}};
    struct {
        size_t size;
        int32_t has_affine, pixel_anchor, canary;
    } small = {2 * sizeof(size_t), 0, 7, 42};
    struct {
        mapanchor_reference known;
        double new_member;
    } large = {{.size = sizeof large}, 5};
    mapanchor_reference unset = {0};
    mapanchor_reading *with_newer = mapanchor_read(file, &options.known);
    CHECK(with_newer != NULL);
    mapanchor_free_reading(with_newer);
    options.new_member[1] = 1;
    CHECK(mapanchor_read(file, &options.known) == NULL && mapanchor_last_status() == MAPANCHOR_BAD_ARGUMENT);
    CHECK(mapanchor_reading_reference(reading, (mapanchor_reference *)(void *)&small) == MAPANCHOR_OK);
    CHECK(small.has_affine == 1 && small.pixel_anchor == MAPANCHOR_CORNER && small.canary == 42);
    CHECK(mapanchor_reading_reference(reading, &large.known) == MAPANCHOR_OK && large.new_member == 0);
    CHECK(large.known.size == sizeof large && large.known.epsg == 4326);
    CHECK(mapanchor_reading_reference(reading, &unset) == MAPANCHOR_BAD_ARGUMENT);
}

static void check_errors(const char *file) {
    mapanchor_read_options options = {.size = sizeof(mapanchor_read_options)};
    mapanchor_reading *missing = mapanchor_read("no such file.tfw", NULL);
    mapanchor_reference reference = {.size = sizeof(mapanchor_reference)};
    mapanchor_diagnostic diagnostic = {.size = sizeof(mapanchor_diagnostic)};
    double x = 1, y = 2;
    CHECK(mapanchor_reading_status(missing) == MAPANCHOR_NOT_FOUND);
    CHECK(strstr(mapanchor_reading_error(missing), "no such file.tfw") != NULL);
    CHECK(mapanchor_reading_reference(missing, &reference) == MAPANCHOR_NOT_FOUND);
    CHECK(strstr(mapanchor_last_error(), "no such file.tfw") != NULL);
    CHECK(mapanchor_to_world(missing, &x, &y) == MAPANCHOR_NOT_FOUND && x == 1 && y == 2);
    CHECK(mapanchor_save("a.wld", missing, NULL) == NULL && mapanchor_last_status() == MAPANCHOR_NOT_FOUND);
    CHECK(mapanchor_reading_diagnostic(missing, 99, &diagnostic) == MAPANCHOR_BAD_ARGUMENT);
    mapanchor_free_reading(missing);
    options.crs = "no such system";
    CHECK(mapanchor_read(file, &options) == NULL && strstr(mapanchor_last_error(), options.crs) != NULL);
    options.crs = NULL;
    options.fit = 8;
    CHECK(mapanchor_read(file, &options) == NULL && mapanchor_last_status() == MAPANCHOR_BAD_ARGUMENT);
    CHECK(mapanchor_read(NULL, NULL) == NULL && mapanchor_reading_json(NULL) == NULL);
    mapanchor_free_reading(NULL);
    mapanchor_free_text(NULL);
}

static void check_saving(const char *folder, mapanchor_reading *reading) {
    char file[4096];
    mapanchor_reference reference = {.size = sizeof(mapanchor_reference)};
    mapanchor_proof proof = {.size = sizeof(mapanchor_proof)};
    mapanchor_save_options options = {.size = sizeof(mapanchor_save_options)};
    mapanchor_saving *saving;
    snprintf(file, sizeof file, "%s/copy.wld", folder);
    saving = mapanchor_save(file, reading, NULL);
    CHECK(saving != NULL && mapanchor_saving_proof(saving, &proof) == MAPANCHOR_OK);
    CHECK(proof.is_read && proof.is_exact && proof.is_same_system && proof.text[0] != '\0');
    mapanchor_free_saving(saving);
    options.keeps_existing = 1;
    CHECK(mapanchor_save(file, reading, &options) == NULL && strstr(mapanchor_last_error(), "copy.wld") != NULL);

    reference.has_affine = 1;
    reference.affine[0] = 0.5;
    reference.affine[4] = -0.5;
    reference.pixel_anchor = MAPANCHOR_CENTRE;
    reference.epsg = 32632;
    snprintf(file, sizeof file, "%s/affine.tfw", folder);
    saving = mapanchor_save_affine(file, &reference, NULL);
    CHECK(saving != NULL && mapanchor_saving_proof(saving, &proof) == MAPANCHOR_OK && proof.is_exact);
    mapanchor_free_saving(saving);
    reading = mapanchor_read(file, NULL);
    CHECK(mapanchor_reading_reference(reading, &reference) == MAPANCHOR_OK && reference.epsg == 32632);
    CHECK(reference.pixel_anchor == MAPANCHOR_CORNER && reference.affine[2] == -0.25 && reference.affine[5] == 0.25);
    mapanchor_free_reading(reading);
    reference.wkt = NULL; /* was the reading's */
    reference.affine[4] = 0;
    CHECK(mapanchor_save_affine(file, &reference, NULL) == NULL && mapanchor_last_status() == MAPANCHOR_BAD_ARGUMENT);
    snprintf(file, sizeof file, "%s/no folder/a.tfw", folder);
    reference.affine[4] = -1;
    CHECK(mapanchor_save_affine(file, &reference, NULL) == NULL && strstr(mapanchor_last_error(), "no folder") != NULL);
}

int main(int argc, char **argv) {
    mapanchor_reading *reading;
    mapanchor_sources *sources;
    char *json;
    if (argc != 3) return 64;
    reading = mapanchor_read(argv[1], NULL);
    sources = mapanchor_read_sources(argv[1], NULL);
    check_reading(reading);
    check_versions(argv[1], reading);
    check_errors(argv[1]);
    check_saving(argv[2], reading);
    json = mapanchor_reading_json(reading);
    CHECK(json != NULL && puts(json) >= 0);
    mapanchor_free_text(json);
    json = mapanchor_sources_json(sources);
    CHECK(json != NULL && puts(json) >= 0);
    mapanchor_free_text(json);
    CHECK(mapanchor_version()[0] != '\0');
    mapanchor_free_reading(reading);
    mapanchor_free_sources(sources);
    return failures == 0 ? 0 : 1;
}
