# HNSYB_SANITIZE selects a sanitizer build.  Reports halt the process at the
# first finding, so a test that trips one fails.
if(HNSYB_SANITIZE)
  list(JOIN HNSYB_SANITIZE "," _hnsyb_san)
  add_compile_options(-fsanitize=${_hnsyb_san} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${_hnsyb_san})
endif()
