# data.table reading a table, texts as factors. usage: fread_load.R TABLE
source("phase.R")
report(measure("load", function() read_table(arguments[1]))$figures)
