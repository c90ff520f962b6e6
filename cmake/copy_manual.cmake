# Copies the help document and its picture folder from FROM to TO, when FROM holds them: the
# Windows build places the manual the native build made beside the DLL. Run with cmake -P.
if(EXISTS "${FROM}/RFDPLGM5.HTML")
  file(MAKE_DIRECTORY "${TO}")
  file(COPY "${FROM}/RFDPLGM5.HTML" DESTINATION "${TO}")
  if(IS_DIRECTORY "${FROM}/RFDPLGM5_files")
    file(COPY "${FROM}/RFDPLGM5_files" DESTINATION "${TO}")
  endif()
else()
  message(STATUS "No manual in ${FROM}: build the native preset to place RFDPLGM5.HTML beside the DLL")
endif()
