"""A grown tree, to be looked at."""

import html
import operator
import sys


class Tree:
    """A decision tree that has been grown or loaded; `ArborClassifier.tree_`.

    Attributes
    ----------
    node_count : int
        The number of tests and leaves.
    n_leaves : int
        The number of leaves.
    max_depth : int
        The number of tests above the deepest leaf.
    class_name : str
        The name of the class column.
    attribute_names : list of str
        The attributes that some node tests.

    Examples
    --------
    >>> print(classifier.tree_.text())  # doctest: +ELLIPSIS
    outlook = overcast: yes (4)
    ...
    """

    def __init__(self, model):
        self._model = model

    @property
    def node_count(self):
        return self._model.size()[0]

    @property
    def n_leaves(self):
        return self._model.size()[1]

    @property
    def max_depth(self):
        return self._model.size()[2]

    @property
    def class_name(self):
        return self._model.class_name()

    @property
    def attribute_names(self):
        return self._model.attribute_names()

    def text(self, max_depth=None, width=60):
        """The tree as ``arbor show`` prints it: a line for each branch.

        Parameters
        ----------
        max_depth : int, default=None
            Tests with so many tests above them are not opened. None: all are.
        width : int, default=60
            Names and values of more columns are shortened; at least 5.

        Returns
        -------
        str

        Raises
        ------
        ValueError
            If a parameter is out of range.
        TypeError
            If a parameter is not an integer.
        """
        if operator.index(width) < 5:
            raise ValueError("width is at least 5")
        return self._model.text(_depth(max_depth), min(operator.index(width), sys.maxsize))

    def to_graphviz(self, max_depth=None):
        """The tree in the language of Graphviz.

        Parameters
        ----------
        max_depth : int, default=None
            Tests with so many tests above them are shown as leaves. None: all are shown.

        Returns
        -------
        str
        """
        return self._model.to_graphviz(_depth(max_depth))

    def to_json(self):
        """The tree as the JSON text that ``arbor show --format json`` writes.

        Returns
        -------
        str
        """
        return self._model.to_json()

    def __repr__(self):
        return "<arbor.Tree: " + self._model.description(60).splitlines()[0] + ">"

    def _repr_html_(self):
        """The first nodes as a list to fold, for notebooks."""
        most = 200
        parts = [f"<div><p>{html.escape(self._model.description(60)).strip().replace(chr(10), '<br>')}</p>"]
        open_tests = []  # their depths
        nodes = self._model.first_nodes(most, 60)
        for place, (depth, branch, attribute, leaf) in enumerate(nodes):
            while open_tests and open_tests[-1] >= depth:
                parts.append("</ul></details></li>" if open_tests.pop() else "</ul></details>")
            label = html.escape(f"{branch}: {leaf}" if branch else leaf)
            has_children = place + 1 < len(nodes) and nodes[place + 1][0] > depth
            item = "<li>" if depth else ""
            if has_children:
                parts.append(f"{item}<details open><summary>{label}, tests <b>{html.escape(attribute)}</b></summary><ul>")
                open_tests.append(depth)
            else:
                more = " ..." if attribute else ""
                parts.append(f"{item}{label}{more}" + ("</li>" if depth else ""))
        while open_tests:
            parts.append("</ul></details></li>" if open_tests.pop() else "</ul></details>")
        if len(nodes) < self.node_count:
            parts.append(f"<p>{self.node_count - len(nodes)} more nodes are not shown</p>")
        return "".join(parts) + "</div>"


def _depth(max_depth):
    if max_depth is None:
        return sys.maxsize
    if operator.index(max_depth) < 0:
        raise ValueError("max_depth is None or at least 0")
    return min(operator.index(max_depth), sys.maxsize)
