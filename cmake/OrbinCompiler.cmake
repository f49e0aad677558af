# Warnings and sanitizers shared by every target of the project.
add_compile_options(-Wall -Wextra -Wno-unused-parameter)
add_compile_definitions(QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
                        QT_DEPRECATED_WARNINGS_SINCE=0x050F00)

if(ORBIN_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()
