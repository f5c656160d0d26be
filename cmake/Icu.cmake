# ICU, as a library of its own or linked in. Linked in, the program starts without loading it:
# its tables are mapped, and read only where a command uses them.

add_library(skerrow_icu INTERFACE)
if(SKERROW_STATIC_ICU)
  find_library(ICU_I18N libicui18n.a REQUIRED)
  find_library(ICU_UC libicuuc.a REQUIRED)
  find_library(ICU_DATA libicudata.a REQUIRED)
  target_link_libraries(skerrow_icu INTERFACE ${ICU_I18N} ${ICU_UC} ${ICU_DATA} ${CMAKE_DL_LIBS})
else()
  pkg_check_modules(ICU REQUIRED IMPORTED_TARGET icu-i18n icu-uc)
  target_link_libraries(skerrow_icu INTERFACE PkgConfig::ICU)
endif()
