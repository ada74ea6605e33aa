# rpart's tree, which is at most 30 deep; branches that leave the training errors as they are are taken back.
# usage: rpart_tree.R as-it-is|coded TABLE
source("phase.R")
library(rpart)

data <- table_for_learning(arguments[2], arguments[1] == "coded")
tree <- function(depth = 30) {
  rpart(class ~ ., data, method = "class", y = TRUE, cp = 0, xval = 0, minbucket = 2, minsplit = 4, maxcompete = 0,
        maxsurrogate = 0, usesurrogate = 0, maxdepth = depth)
}

report(measure("rate", function() tree(depth = 1))$figures)
grown <- measure("grow", tree)
frame <- grown$result$frame
report(grown$figures, leaves = sum(frame$var == "<leaf>"),
       accuracy = mean(frame$yval[grown$result$where] == as.numeric(grown$result$y)))
report(measure("classify", function() predict(grown$result, data, type = "class"))$figures)
