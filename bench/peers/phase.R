# What the scripts of the peers written in R have in common: they measure a phase as arbor_measure_table does.
suppressPackageStartupMessages(library(data.table))
setDTthreads(1)

process_bytes <- function(entry) {
  line <- grep(paste0("^", entry, ":"), readLines("/proc/self/status"), value = TRUE)
  as.numeric(gsub("[^0-9]", "", line)) * 1024
}

processor_seconds <- function() sum(proc.time()[c("user.self", "sys.self")])
clock_seconds <- function() as.numeric(Sys.time())

# Runs the work three times; more often when that takes less than a second in all, less often when it takes more than a
# minute. Work that is too short for the clocks is repeated within a run. Returns the figures to report, and the result
# of the last run.
measure <- function(phase, work) {
  shortest_run <- 0.05
  gc()
  cat("5", file = "/proc/self/clear_refs")  # the peak starts again
  figures <- list(phase = phase, before = process_bytes("VmRSS"), seconds = numeric(), clock = numeric())
  beginning <- clock_seconds()
  repeats <- 1
  for (run in 1:25) {
    taken <- clock_seconds() - beginning
    if (run > 1 && taken > (if (run <= 3) 60 else 1)) break
    processor_start <- processor_seconds()
    start <- clock_seconds()
    for (i in seq_len(repeats)) {
      result <- NULL  # freed before the next
      result <- work()
    }
    seconds <- (processor_seconds() - processor_start) / repeats
    clock <- (clock_seconds() - start) / repeats
    if (run == 1) {
      figures$peak <- process_bytes("VmHWM")
      repeats <- max(1, ceiling(shortest_run / clock))
      if (repeats > 1) next  # too short to count
    }
    figures$seconds <- c(figures$seconds, seconds)
    figures$clock <- c(figures$clock, clock)
  }
  list(figures = figures, result = result)
}

report <- function(figures, ...) {
  facts <- c(figures, list(...))
  single <- setdiff(names(facts), c("seconds", "clock"))
  facts[single] <- lapply(facts[single], jsonlite::unbox)
  cat(jsonlite::toJSON(facts, digits = NA), "\n", sep = "")
  flush(stdout())
}

read_table <- function(path) fread(path, na.strings = c("?", ""), stringsAsFactors = TRUE)

# A table with the class in the last column, named `class`. With `coded` the attributes are all numbers: a text its
# place in the alphabet, an unknown value one that is below all others.
table_for_learning <- function(path, coded) {
  data <- as.data.frame(read_table(path))
  names(data) <- make.names(names(data), unique = TRUE)
  names(data)[ncol(data)] <- "class"
  data$class <- as.factor(data$class)
  for (i in seq_len(ncol(data) - 1)) {
    if (is.logical(data[[i]])) data[[i]] <- as.factor(data[[i]])
    if (coded) {
      numbers <- as.numeric(data[[i]])
      numbers[is.na(numbers)] <- min(numbers, na.rm = TRUE) - 1
      data[[i]] <- numbers
    }
  }
  data
}

refuse <- function(reason) {
  message(reason)
  quit(status = 1)
}

arguments <- commandArgs(trailingOnly = TRUE)
