# Sanitizers hold for the whole build or for none of it: mixed objects report false errors.
if(QUILLPG_SANITIZE)
  add_compile_options(-fsanitize=${QUILLPG_SANITIZE} -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QUILLPG_SANITIZE})
endif()
