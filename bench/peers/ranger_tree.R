# ranger's tree: one, on all cases and all attributes. It has no least number of cases in a leaf, only one below which a
# node is not divided, 4 here as in the others. A factor is divided in two by the order of its levels.
# usage: ranger_tree.R as-it-is|coded TABLE
source("phase.R")
library(ranger)

data <- table_for_learning(arguments[2], arguments[1] == "coded")
if (anyNA(data)) refuse("unknown values")
attributes <- data[-ncol(data)]
tree <- function(...) {
  ranger(x = attributes, y = data$class, num.trees = 1, mtry = ncol(attributes), replace = FALSE, sample.fraction = 1,
         min.node.size = 3, num.threads = 1, seed = 1, oob.error = FALSE, verbose = FALSE, ...)
}

report(measure("rate", function() tree(max.depth = 1))$figures)
grown <- measure("grow", tree)
classified <- measure("classify", function() predict(grown$result, attributes, num.threads = 1)$predictions)
report(grown$figures, leaves = sum(grown$result$forest$child.nodeIDs[[1]][[1]] == 0),
       accuracy = mean(classified$result == data$class))
report(classified$figures)
