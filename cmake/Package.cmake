# The Debian package. Its dependencies are computed from what the binary links; what Qt loads while it runs is named.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME sonotrace)
set(CPACK_PACKAGE_VENDOR "The Sonotrace developers")
set(CPACK_PACKAGE_CONTACT "The Sonotrace developers <developers@sonotrace.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "audio test bench: generators, spectrum, waterfall, oscilloscope")
set(CPACK_PACKAGE_DESCRIPTION "Thirteen signal generators and a frequency sweep play through the sound
output and can be recorded to WAV files. A spectrum analyzer, a waterfall
and a two-channel oscilloscope listen to the sound input. For measuring
real equipment with PulseAudio or PipeWire.")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-image-formats-plugins")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-wayland, pipewire-pulse | pulseaudio")
include(CPack)
