# Sources of the core library, which builds without Qt.
set(CORE_SOURCES
    song/PlayPointList.cpp
    engine/Schedule.cpp
    engine/Playhead.cpp
    engine/Engine.cpp
    engine/SoundBuffer.cpp
)
