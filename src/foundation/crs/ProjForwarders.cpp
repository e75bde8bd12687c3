// PROJ's functions by their own names, but PROJ is loaded by the first call of one: with the
// libraries below it, it is most of the time that a process costs which asks for no system.
// What is left out here, the linker finds missing.

#define PROJ_DLL  // so that they are hidden

#include "io/LibraryOnDemand.h"

#include <proj.h>
#include <proj_experimental.h>

namespace {

Tellurion::LibraryOnDemand library(MAPANCHOR_LIBRARY, "Coordinate systems need PROJ");

}  // namespace

#define FORWARD_FROM library

FORWARD_0(proj_context_create)
FORWARD_0(proj_get_crs_list_parameters_create)
FORWARD_1(proj_context_destroy)
FORWARD_1(proj_crs_info_list_destroy)
FORWARD_1(proj_destroy)
FORWARD_1(proj_errno)
FORWARD_1(proj_errno_reset)
FORWARD_1(proj_get_crs_list_parameters_destroy)
FORWARD_1(proj_get_name)
FORWARD_1(proj_get_type)
FORWARD_1(proj_int_list_destroy)
FORWARD_1(proj_is_crs)
FORWARD_1(proj_is_deprecated)
FORWARD_1(proj_list_destroy)
FORWARD_1(proj_list_get_count)
FORWARD_2(proj_assign_context)
FORWARD_2(proj_clone)
FORWARD_2(proj_context_set_enable_network)
FORWARD_2(proj_coordoperation_get_param_count)
FORWARD_2(proj_create)
FORWARD_2(proj_crs_get_coordinate_system)
FORWARD_2(proj_crs_get_coordoperation)
FORWARD_2(proj_crs_get_datum)
FORWARD_2(proj_crs_get_datum_ensemble)
FORWARD_2(proj_crs_get_geodetic_crs)
FORWARD_2(proj_crs_is_derived)
FORWARD_2(proj_cs_get_axis_count)
FORWARD_2(proj_get_ellipsoid)
FORWARD_2(proj_get_id_auth_name)
FORWARD_2(proj_get_id_code)
FORWARD_2(proj_get_prime_meridian)
FORWARD_2(proj_get_source_crs)
FORWARD_2(proj_log_level)
FORWARD_2(proj_normalize_for_visualization)
FORWARD_3(proj_alter_name)
FORWARD_3(proj_as_projjson)
FORWARD_3(proj_create_conversion_utm)
FORWARD_3(proj_crs_alter_geodetic_crs)
FORWARD_3(proj_crs_create_bound_crs_to_WGS84)
FORWARD_3(proj_crs_demote_to_2D)
FORWARD_3(proj_crs_get_sub_crs)
FORWARD_3(proj_list_get)
FORWARD_3(proj_trans)
FORWARD_4(proj_as_proj_string)
FORWARD_4(proj_as_wkt)
FORWARD_4(proj_coord)
FORWARD_4(proj_create_cartesian_2D_cs)
FORWARD_4(proj_create_ellipsoidal_2D_cs)
FORWARD_4(proj_get_crs_info_list_from_database)
FORWARD_4(proj_is_equivalent_to_with_ctx)
FORWARD_5(proj_coordoperation_get_method_info)
FORWARD_5(proj_coordoperation_get_towgs84_values)
FORWARD_5(proj_create_crs_to_crs_from_pj)
FORWARD_5(proj_create_from_wkt)
FORWARD_5(proj_create_projected_crs)
FORWARD_5(proj_identify)
FORWARD_5(proj_prime_meridian_get_parameters)
FORWARD_6(proj_create_from_database)
FORWARD_6(proj_crs_alter_cs_angular_unit)
FORWARD_6(proj_crs_alter_cs_linear_unit)
FORWARD_6(proj_ellipsoid_get_parameters)
FORWARD_7(proj_get_area_of_use)
FORWARD_8(proj_create_from_name)
FORWARD_9(proj_create_conversion)
FORWARD_10(proj_cs_get_axis_info)
FORWARD_11(proj_create_geographic_crs)
FORWARD_13(proj_coordoperation_get_param)
