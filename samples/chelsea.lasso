# The cat, one vertex a line, in pixels; the outline closes itself.
42 0
399 0
381 28
367 65
359 102
367 142
355 186
320 226
314 258
293 284
268 299
4 299
0 132
28 96
36 63
39 0
