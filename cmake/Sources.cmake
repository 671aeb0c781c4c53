# Sources of the core library, which builds without Qt.
set(CORE_SOURCES
    song/PlayPointList.cpp
    engine/Schedule.cpp
    engine/Playhead.cpp
    engine/Engine.cpp
    engine/SoundBuffer.cpp
    engine/Mixer.cpp
    engine/WaveFile.cpp
    engine/SoundSystem.cpp
    engine/AudioCallback.cpp
    engine/OfflineOutput.cpp
    engine/RtAudioOutput.cpp
    editing/Line.cpp
)
