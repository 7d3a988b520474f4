// Carries the precompiled headers; see Rooms.cmake.
