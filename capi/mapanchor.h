#ifndef MAPANCHOR_H
#define MAPANCHOR_H

#include <stddef.h>
#include <stdint.h>

/** \file
 * The C interface of MapAnchor: reads and saves the georeferencing of rasters and maps.
 *
 * Handles. What is read or saved is an opaque handle. Whoever got it frees it with the function
 * named after it. Texts of a structure belong to the handle they came from and live as long as it;
 * texts that a function returns as char * belong to the caller, who frees them with
 * mapanchor_free_text(). All texts are UTF-8, but for names of files, which are the bytes that the
 * file system has, and end in NUL.
 *
 * Structures. The first member of each is `size`, which the caller sets to sizeof of the structure;
 * all other members may be 0, which means the default. Structures only grow: a program that was
 * compiled with an older header works with a newer library. With an older library a newer structure
 * is filled with 0 where that library has nothing, and options that it does not know are refused.
 *
 * Errors. A function that fails returns NULL or a status other than MAPANCHOR_OK;
 * mapanchor_last_error() says why. No C++ exception leaves this interface.
 *
 * Threads. All functions may be called from any thread at any time. One handle is for one thread at
 * a time.
 *
 * Pixels and positions. A transform leads from (column, row), counted rightwards and downwards, to
 * (x, y): easting and northing, or longitude and latitude, in this order whatever the order of the
 * axes in the definition of the system, and in the unit of the system. Column 0, row 0 is the outer
 * corner of the top left pixel or its centre, as `pixel_anchor` says.
 */

#if defined(_WIN32) && defined(MAPANCHOR_C_BUILDING)
#define MAPANCHOR_C_EXPORT __declspec(dllexport)
#elif defined(_WIN32)
#define MAPANCHOR_C_EXPORT __declspec(dllimport)
#else
#define MAPANCHOR_C_EXPORT __attribute__((visibility("default"))) /**< exported by the library */
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** What became of a call, a reading or a save. New values may be added. */
typedef enum mapanchor_status {
    MAPANCHOR_OK = 0,            /**< done; a reading has a reference */
    MAPANCHOR_NO_REFERENCE = 1,  /**< the file was read, and has no georeferencing */
    MAPANCHOR_REFUSED = 2,       /**< of an unsupported kind, encrypted, or a module is missing */
    MAPANCHOR_NOT_FOUND = 3,     /**< there is no such file */
    MAPANCHOR_NO_ACCESS = 4,     /**< a file cannot be opened or replaced */
    MAPANCHOR_INVALID = 5,       /**< what a file holds, or what is to be saved, cannot be used */
    MAPANCHOR_OUT_OF_MEMORY = 6, /**< the process has no memory left */
    MAPANCHOR_BAD_ARGUMENT = 7,  /**< an argument of the call cannot be used */
    MAPANCHOR_NOT_WRITTEN = 8,   /**< a file cannot be written to the end; the old one is kept */
    MAPANCHOR_NOT_EXACT = 9      /**< the save was not exact and was taken back */
} mapanchor_status;

/** The kind of fit through control points, by number. */
typedef enum mapanchor_fit {
    MAPANCHOR_FIT_AFFINE = 0,      /**< 6 terms; the default */
    MAPANCHOR_FIT_CONFORMAL = 1,   /**< shift, scale and rotation */
    MAPANCHOR_FIT_POLYNOMIAL2 = 2, /**< second order */
    MAPANCHOR_FIT_POLYNOMIAL3 = 3, /**< third order */
    MAPANCHOR_FIT_PROJECTIVE = 4,  /**< 8 terms */
    MAPANCHOR_FIT_SPLINE = 5,      /**< thin plate spline, exact at each point */
    MAPANCHOR_FIT_BILINEAR = 6,    /**< 4 terms per axis */
    MAPANCHOR_FIT_NONE = 7         /**< no transform */
} mapanchor_fit;

/** What column 0, row 0 of a transform is. */
typedef enum mapanchor_anchor {
    MAPANCHOR_CORNER = 0, /**< the outer corner of the top left pixel */
    MAPANCHOR_CENTRE = 1  /**< the centre of the top left pixel */
} mapanchor_anchor;

typedef struct mapanchor_reading mapanchor_reading; /**< one file that was read */
typedef struct mapanchor_sources mapanchor_sources; /**< all sources of a raster's georeferencing */
typedef struct mapanchor_saving mapanchor_saving;   /**< a save that was done */

/** How to read. NULL in place of it, or 0 in a member, means the default. */
typedef struct mapanchor_read_options {
    size_t size;              /**< sizeof(mapanchor_read_options) */
    int64_t width;            /**< of the raster in pixels; 0: as the file states */
    int64_t height;           /**< of the raster in pixels; 0: as the file states */
    int32_t fit;              /**< a mapanchor_fit */
    int32_t overrides_crs;    /**< 1: `crs` replaces a system that the file has */
    const char* crs;          /**< coordinate system in any notation, for a file without one */
    const char* source;       /**< source of a raster, a kind such as "WLD" or a file's name */
    const char* pdf_map;      /**< map of a PDF page, by its name or its number from 1 */
    const char* pdf_password; /**< password of an encrypted PDF */
    int32_t pdf_page;         /**< page of a PDF, from 1 */
    int32_t explains;         /**< 1: the JSON states where each value is written */
    double pdf_resolution;    /**< of a PDF's raster in dots per inch; 0: 72 */
} mapanchor_read_options;

/** The reference of a file, as far as plain numbers go. */
typedef struct mapanchor_reference {
    size_t size;           /**< sizeof(mapanchor_reference) */
    int32_t has_affine;    /**< 1: `affine` holds the transform */
    int32_t pixel_anchor;  /**< a mapanchor_anchor */
    double affine[6];      /**< a, b, c, d, e, f: x = a column + b row + c, y = d column + e row + f */
    int64_t width;         /**< of the raster in pixels; 0 when not known */
    int64_t height;        /**< of the raster in pixels; 0 when not known */
    int32_t fit;           /**< a mapanchor_fit, MAPANCHOR_FIT_NONE without a transform */
    int32_t epsg;          /**< code of the coordinate system; 0 when it has none */
    const char* wkt;       /**< well-known text of the system; NULL without one */
    const char* crs_name;  /**< name of the system; NULL without one */
    const char* kind;      /**< kind of the file, such as "WLD"; NULL when it has no name */
    const char* used_file; /**< file that the reference was read from */
    size_t point_count;    /**< number of control points */
} mapanchor_reference;

/** A control point. */
typedef struct mapanchor_point {
    size_t size;      /**< sizeof(mapanchor_point) */
    double column;    /**< in pixels, by the anchor of the reference */
    double row;       /**< in pixels, by the anchor of the reference */
    double x;         /**< easting or longitude */
    double y;         /**< northing or latitude */
    double z;         /**< height; 0 without one */
    int32_t enabled;  /**< 1: it takes part in the fit */
    const char* name; /**< may be empty */
} mapanchor_point;

/** A remark on a reading or a save: what was guessed, rounded, left out or refused. */
typedef struct mapanchor_diagnostic {
    size_t size;       /**< sizeof(mapanchor_diagnostic) */
    int32_t severity;  /**< 0 a note, 1 a warning, 2 an error */
    const char* id;    /**< for programs, see docs/diagnostics.md */
    const char* text;  /**< a sentence for people */
    const char* file;  /**< where it was seen; may be empty */
    const char* place; /**< a line, a byte, a tag or an object; may be empty */
} mapanchor_diagnostic;

/** One place where a raster's georeferencing is written. */
typedef struct mapanchor_source {
    size_t size;            /**< sizeof(mapanchor_source) */
    int32_t wins;           /**< 1: mapanchor_read() takes its position */
    int32_t wins_in_gdal;   /**< 1: GDAL takes its position */
    double distance_pixels; /**< from the winner at the worst corner; not a number when not known */
    double distance_metres; /**< the same on the Earth */
    const char* kind;       /**< "internal", "aux.xml", "PRJ" or a kind such as "WLD" */
    const char* file;       /**< its first file */
} mapanchor_source;

/** How to save. NULL in place of it, or 0 in a member, means the default. */
typedef struct mapanchor_save_options {
    size_t size;             /**< sizeof(mapanchor_save_options) */
    int64_t width;           /**< of the raster in pixels; 0: as the reference states */
    int64_t height;          /**< of the raster in pixels; 0: as the reference states */
    int32_t keeps_existing;  /**< 1: a sidecar that is there is not replaced; the call fails */
    int32_t skips_sync;      /**< 1: does not wait until the file is on the disk */
    int32_t skips_proof;     /**< 1: does not read the file back */
    int32_t requires_exact;  /**< 1: a save whose proof fails is taken back */
    double tolerance_pixels; /**< for the proof; 0: a thousandth of a pixel */
    double tolerance_metres; /**< for the proof; 0: a millimetre */
    const char* image_name;  /**< raster that kinds write down; NULL: the raster that was read */
} mapanchor_save_options;

/** What reading a file back after the save shows. */
typedef struct mapanchor_proof {
    size_t size;                  /**< sizeof(mapanchor_proof) */
    int32_t is_read;              /**< 1: the file was read back */
    int32_t is_exact;             /**< 1: nothing differs by more than the tolerance */
    int32_t is_confirmed_by_gdal; /**< 1: GDAL read it by its own driver, and agreed */
    int32_t is_same_system;       /**< 1: the coordinate system is the same */
    double pixels;                /**< largest distance; not a number when not known */
    double metres;                /**< the same on the ground */
    const char* text;             /**< a sentence for people */
} mapanchor_proof;

/** The version of the library, such as "0.2.0". */
MAPANCHOR_C_EXPORT const char* mapanchor_version(void);

/** Why the last call that failed on this thread failed: a sentence that names the file. Empty before
 * any failure; valid until the next failure on this thread. */
MAPANCHOR_C_EXPORT const char* mapanchor_last_error(void);
/** The status of that call. */
MAPANCHOR_C_EXPORT int mapanchor_last_status(void);

/** Reads the georeferencing of `file`, with the files beside it. Returns a reading also for a file
 * that cannot be read: see mapanchor_reading_status(). NULL for an argument that cannot be used, such
 * as an unknown coordinate system, and when memory runs out. */
MAPANCHOR_C_EXPORT mapanchor_reading* mapanchor_read(const char* file, const mapanchor_read_options* options);
/** MAPANCHOR_OK when there is a reference. */
MAPANCHOR_C_EXPORT int mapanchor_reading_status(const mapanchor_reading* reading);
/** Why there is no reference; empty when there is one. Belongs to the reading. */
MAPANCHOR_C_EXPORT const char* mapanchor_reading_error(const mapanchor_reading* reading);
/** The object that `mapanchor info --json` prints, in one line without its end. Free it with
 * mapanchor_free_text(). */
MAPANCHOR_C_EXPORT char* mapanchor_reading_json(const mapanchor_reading* reading);
/** Fills `reference`. Fails with the status of a reading that has no reference. */
MAPANCHOR_C_EXPORT int mapanchor_reading_reference(const mapanchor_reading* reading,
                                                   mapanchor_reference* reference);
/** Fills `point` with the control point of that index, from 0. */
MAPANCHOR_C_EXPORT int mapanchor_reading_point(const mapanchor_reading* reading, size_t index,
                                               mapanchor_point* point);
/** The number of remarks. */
MAPANCHOR_C_EXPORT size_t mapanchor_reading_diagnostic_count(const mapanchor_reading* reading);
/** Fills `diagnostic` with the remark of that index, from 0. */
MAPANCHOR_C_EXPORT int mapanchor_reading_diagnostic(const mapanchor_reading* reading, size_t index,
                                                    mapanchor_diagnostic* diagnostic);
/** Replaces column and row in `x` and `y` by the position, through a transform of any kind. Fails
 * with MAPANCHOR_INVALID where there is none; `x` and `y` are then as they were. */
MAPANCHOR_C_EXPORT int mapanchor_to_world(const mapanchor_reading* reading, double* x, double* y);
/** Replaces the position in `x` and `y` by column and row. */
MAPANCHOR_C_EXPORT int mapanchor_to_pixel(const mapanchor_reading* reading, double* x, double* y);
/** Frees a reading; does nothing for NULL. */
MAPANCHOR_C_EXPORT void mapanchor_free_reading(mapanchor_reading* reading);

/** Reads all sources of a raster's georeferencing. NULL as from mapanchor_read(). */
MAPANCHOR_C_EXPORT mapanchor_sources* mapanchor_read_sources(const char* raster,
                                                             const mapanchor_read_options* options);
/** The object that `mapanchor sources --json` prints, in one line without its end. Free it with
 * mapanchor_free_text(). */
MAPANCHOR_C_EXPORT char* mapanchor_sources_json(const mapanchor_sources* sources);
/** The number of sources. */
MAPANCHOR_C_EXPORT size_t mapanchor_sources_count(const mapanchor_sources* sources);
/** Fills `source` with the source of that index, from 0. */
MAPANCHOR_C_EXPORT int mapanchor_sources_get(const mapanchor_sources* sources, size_t index,
                                             mapanchor_source* source);
/** What the source of that index states on its own: a reading that the caller frees. */
MAPANCHOR_C_EXPORT mapanchor_reading* mapanchor_sources_reading(const mapanchor_sources* sources,
                                                                size_t index);
/** Frees sources; does nothing for NULL. */
MAPANCHOR_C_EXPORT void mapanchor_free_sources(mapanchor_sources* sources);

/** Saves the reference of a reading into the kind that the name of `file` states, and reads it back.
 * NULL when it fails; the file is then what it was. The proof of a save that succeeded may still
 * say that it is not exact, see mapanchor_saving_proof(). A centre anchor is shifted to the corner. */
MAPANCHOR_C_EXPORT mapanchor_saving* mapanchor_save(const char* file, const mapanchor_reading* reading,
                                                    const mapanchor_save_options* options);
/** Saves an affine in the same way. Of `reference` it takes the affine, the anchor, the size of the
 * raster and the coordinate system: `wkt`, in any notation, or else `epsg`. */
MAPANCHOR_C_EXPORT mapanchor_saving* mapanchor_save_affine(const char* file,
                                                           const mapanchor_reference* reference,
                                                           const mapanchor_save_options* options);
/** Fills `proof`. */
MAPANCHOR_C_EXPORT int mapanchor_saving_proof(const mapanchor_saving* saving, mapanchor_proof* proof);
/** The number of remarks: what the kind could not hold, and what differs. */
MAPANCHOR_C_EXPORT size_t mapanchor_saving_diagnostic_count(const mapanchor_saving* saving);
/** Fills `diagnostic` with the remark of that index, from 0. */
MAPANCHOR_C_EXPORT int mapanchor_saving_diagnostic(const mapanchor_saving* saving, size_t index,
                                                   mapanchor_diagnostic* diagnostic);
/** Frees a saving; does nothing for NULL. The file stays. */
MAPANCHOR_C_EXPORT void mapanchor_free_saving(mapanchor_saving* saving);

/** Frees a text that a function returned as char *; does nothing for NULL. */
MAPANCHOR_C_EXPORT void mapanchor_free_text(char* text);

#ifdef __cplusplus
}
#endif

#endif
