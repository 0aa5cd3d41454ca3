# The concrete hard drive over real disks and image files: a static library that drivediag and
# the tests link. Included from host/CMakeLists.txt and from the tests; defined once.
if(NOT TARGET blockdrive)
  if(WIN32)
    set(BLOCKDRIVE_PLATFORM windows)
  else()
    set(BLOCKDRIVE_PLATFORM linux)
  endif()
  find_package(Threads REQUIRED)
  add_library(blockdrive STATIC
    ${CMAKE_CURRENT_LIST_DIR}/BlockDeviceDrive.cpp
    ${CMAKE_CURRENT_LIST_DIR}/BlockDeviceDriveUndo.cpp
    ${CMAKE_CURRENT_LIST_DIR}/Crc32c.cpp
    ${CMAKE_CURRENT_LIST_DIR}/DurableFile_${BLOCKDRIVE_PLATFORM}.cpp
    ${CMAKE_CURRENT_LIST_DIR}/UndoJournal.cpp
    ${CMAKE_CURRENT_LIST_DIR}/UndoJournalFormat.cpp
    ${CMAKE_CURRENT_LIST_DIR}/BlockDevice_${BLOCKDRIVE_PLATFORM}.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ReadAhead.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ReadPattern.cpp
  )
  target_include_directories(blockdrive PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(blockdrive PUBLIC libDrive os kiv quel5 Threads::Threads)
endif()
