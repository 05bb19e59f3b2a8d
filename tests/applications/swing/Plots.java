import java.awt.*;
import java.awt.event.*;
import java.io.*;
import java.util.*;
import java.util.List;
import javax.swing.*;
import javax.swing.table.*;
import javax.swing.tree.*;

/**
 * A Swing window with controls of every common kind. It tells, on its standard output and whenever it is asked by a line on its
 * standard input, what can be seen of its own components, by their layout alone, and which of them the mouse has pressed.
 */
public final class Plots {
    private final Map<Object, Integer> identifiers = new IdentityHashMap<>();
    private final List<String> presses = Collections.synchronizedList(new ArrayList<>());
    private final JFrame frame = new JFrame("Allotments");
    private JList<String> list;
    private JTable table;

    public static void main(String[] arguments) throws Exception {
        Plots plots = new Plots();
        SwingUtilities.invokeAndWait(plots::build);
        BufferedReader questions = new BufferedReader(new InputStreamReader(System.in));
        for (String line = questions.readLine(); line != null; line = questions.readLine()) {
            String[] answer = new String[1];
            SwingUtilities.invokeAndWait(() -> answer[0] = plots.tell());
            System.out.println(answer[0]);
        }
        System.exit(0);
    }

    private void build() {
        frame.setDefaultCloseOperation(WindowConstants.DO_NOTHING_ON_CLOSE);
        frame.setJMenuBar(menuBar());
        frame.add(toolBar(), BorderLayout.NORTH);
        JTabbedPane tabs = new JTabbedPane();
        tabs.addTab("Form", form());
        tabs.addTab("Register", register());
        tabs.addTab("Notes", new JLabel("Nothing of this can be seen"));
        JSplitPane split = new JSplitPane(JSplitPane.HORIZONTAL_SPLIT, gardens(), tabs);
        split.setDividerLocation(210);
        JSplitPane whole = new JSplitPane(JSplitPane.VERTICAL_SPLIT, split, table());
        whole.setDividerLocation(430);
        frame.add(whole, BorderLayout.CENTER);
        frame.add(new JLabel("12 plots are free"), BorderLayout.SOUTH);
        frame.setBounds(80, 60, 1000, 780);
        Toolkit.getDefaultToolkit().addAWTEventListener(this::pressed, AWTEvent.MOUSE_EVENT_MASK);
        frame.setVisible(true);
        list.ensureIndexIsVisible(60);
        table.scrollRectToVisible(table.getCellRect(120, 0, true));
    }

    private static JMenuBar menuBar() {
        JMenuBar bar = new JMenuBar();
        for (String title : new String[] {"Plot", "Tenant", "View"}) {
            JMenu menu = new JMenu(title);
            menu.add(new JMenuItem(title + " list"));
            menu.add(new JMenuItem("New " + title.toLowerCase()));
            bar.add(menu);
        }
        return bar;
    }

    private static JToolBar toolBar() {
        JToolBar bar = new JToolBar();
        bar.setFloatable(false);
        bar.add(new JButton("Add"));
        bar.add(new JButton("Remove"));
        bar.add(new JToggleButton("Map"));
        JButton locked = new JButton("Locked");
        locked.setEnabled(false);
        bar.add(locked);
        return bar;
    }

    private JComponent form() {
        JPanel form = new JPanel(new GridLayout(0, 2, 8, 4));
        form.setBorder(BorderFactory.createEmptyBorder(6, 6, 6, 6));
        field(form, "Name", new JTextField("Ida Thorne"));
        field(form, "Password", new JPasswordField("marigold"));
        field(form, "Site", new JComboBox<>(new String[] {"Mill Lane", "Water Street", "Old Orchard"}));
        JComboBox<String> crop = new JComboBox<>(new String[] {"Beans", "Peas"});
        crop.setEditable(true);
        field(form, "First crop", crop);
        field(form, "Size", new JSpinner(new SpinnerNumberModel(120, 20, 400, 10)));
        field(form, "Sun", new JSlider(0, 10, 7));
        JProgressBar progress = new JProgressBar(0, 100);
        progress.setValue(35);
        field(form, "Waiting list", progress);
        form.add(new JCheckBox("Vegetables", true));
        form.add(new JCheckBox("Flowers"));
        JRadioButton spring = new JRadioButton("Spring", true), autumn = new JRadioButton("Autumn");
        ButtonGroup group = new ButtonGroup();
        // A search presses a radio button by its own action, without the mouse.
        for (JRadioButton button : new JRadioButton[] {spring, autumn})
            button.addActionListener(event -> presses.add(identifier(button)));
        group.add(spring);
        group.add(autumn);
        form.add(spring);
        form.add(autumn);
        JTextArea notes = new JTextArea("We are two adults and a dog.\nWe should like a plot near the water.");
        field(form, "Notes", new JScrollPane(notes));
        return form;
    }

    private static void field(JPanel form, String words, JComponent input) {
        JLabel label = new JLabel(words);
        label.setLabelFor(input);
        form.add(label);
        form.add(input);
    }

    private static JComponent register() {
        JPanel page = new JPanel();
        page.add(new JButton("On a hidden page"));
        return page;
    }

    private JComponent gardens() {
        DefaultMutableTreeNode root = new DefaultMutableTreeNode("Gardens");
        for (String side : new String[] {"North", "South"}) {
            DefaultMutableTreeNode branch = new DefaultMutableTreeNode(side);
            for (int plot = 1; plot <= 4; plot++) branch.add(new DefaultMutableTreeNode(side + " plot " + plot));
            root.add(branch);
        }
        JTree tree = new JTree(root);
        tree.expandRow(1);
        DefaultListModel<String> names = new DefaultListModel<>();
        for (int tool = 1; tool <= 200; tool++) names.addElement("Tool number " + tool);
        list = new JList<>(names);
        JSplitPane both = new JSplitPane(JSplitPane.VERTICAL_SPLIT, new JScrollPane(tree), new JScrollPane(list));
        both.setDividerLocation(200);
        return both;
    }

    private JComponent table() {
        String[] columns = {"Plot", "Tenant", "Rent"};
        Object[][] rows = new Object[300][];
        for (int row = 0; row < rows.length; row++)
            rows[row] = new Object[] {"Plot " + (row + 1), "Tenant " + (row * 7 % 300), 31 + row % 9};
        table = new JTable(new DefaultTableModel(rows, columns));
        return new JScrollPane(table);
    }

    // ------------------------------------------------------------------------------------------------------ what is seen

    private String tell() {
        StringBuilder things = new StringBuilder();
        tell(frame.getRootPane(), null, things);
        StringBuilder told = new StringBuilder("{\"presses\":[");
        synchronized (presses) {
            for (int i = 0; i < presses.size(); i++) told.append(i > 0 ? "," : "").append(quoted(presses.get(i)));
        }
        return told.append("],\"things\":[").append(things).append("]}").toString();
    }

    private void tell(Component component, String inside, StringBuilder things) {
        if (!component.isShowing()) return;
        String kind = kindOf(component);
        Rectangle box = new Rectangle(component.getLocationOnScreen(), component.getSize());
        if (!(component instanceof JTree || component instanceof JList || component instanceof JTable || component instanceof JTableHeader))
            thing(identifier(component), kind == null ? component.getClass().getSimpleName() : kind, textOf(component), box,
                  seenOf(component, null), kind != null && inside == null, kind != null && isPressed(component), inside, things);
        if (component instanceof JTree) rowsOf((JTree) component, things);
        if (component instanceof JList) rowsOf((JList<?>) component, things);
        if (component instanceof JTable) cellsOf((JTable) component, things);
        if (component instanceof JTableHeader) headersOf((JTableHeader) component, things);
        if (component instanceof JTabbedPane) tabsOf((JTabbedPane) component, things);
        String within = inside != null ? inside : kind != null ? identifier(component) : null;
        if (component instanceof Container && !(component instanceof CellRendererPane))
            for (Component child : ((Container) component).getComponents()) tell(child, within, things);
    }

    /** The words of the comparison; null for what only holds others. */
    private static String kindOf(Component component) {
        if (component instanceof JMenu) return "menu bar item";
        if (component.getParent() instanceof JScrollBar) return null;
        if (component instanceof JCheckBox) return "check box";
        if (component instanceof JRadioButton) return "radio button";
        if (component instanceof JToggleButton) return "toggle button";
        if (component instanceof JButton) return "button";
        if (component instanceof JComboBox) return "combo box";
        if (component instanceof JSpinner) return "spin button";
        if (component instanceof JSlider) return "slider";
        if (component instanceof JProgressBar) return "progress bar";
        if (component instanceof JTextArea) return "text area";
        if (component instanceof JTextField) return "entry";
        if (component instanceof JLabel && ((JLabel) component).getText() != null) return "text";
        return null;
    }

    private static String textOf(Component component) {
        if (component instanceof AbstractButton) return ((AbstractButton) component).getText();
        if (component instanceof JLabel) return Objects.toString(((JLabel) component).getText(), "");
        if (component instanceof JComboBox) return Objects.toString(((JComboBox<?>) component).getSelectedItem(), "");
        if (component instanceof JSpinner) return Objects.toString(((JSpinner) component).getValue(), "");
        if (component instanceof JPasswordField) return "";
        if (component instanceof javax.swing.text.JTextComponent) return ((javax.swing.text.JTextComponent) component).getText();
        return "";
    }

    /** A press on these opens nothing that would cover the window. */
    private static boolean isPressed(Component component) {
        return component.isEnabled() && !(component instanceof JLabel || component instanceof JMenu || component instanceof JComboBox
            || component instanceof JProgressBar);
    }

    private void rowsOf(JTree tree, StringBuilder things) {
        for (int row = 0; row < tree.getRowCount(); row++)
            part(tree, "item", row, tree.getPathForRow(row).getLastPathComponent().toString(), tree.getRowBounds(row), things);
    }

    private void rowsOf(JList<?> list, StringBuilder things) {
        for (int row = 0; row < list.getModel().getSize(); row++)
            part(list, "item", row, list.getModel().getElementAt(row).toString(), list.getCellBounds(row, row), things);
    }

    private void cellsOf(JTable table, StringBuilder things) {
        for (int row = 0; row < table.getRowCount(); row++)
            for (int column = 0; column < table.getColumnCount(); column++)
                part(table, "cell", row * table.getColumnCount() + column, table.getValueAt(row, column).toString(),
                     table.getCellRect(row, column, false), things);
    }

    private void headersOf(JTableHeader header, StringBuilder things) {
        for (int column = 0; column < header.getColumnModel().getColumnCount(); column++)
            part(header, "header", column, header.getColumnModel().getColumn(column).getHeaderValue().toString(),
                 header.getHeaderRect(column), things);
    }

    private void tabsOf(JTabbedPane tabs, StringBuilder things) {
        for (int tab = 0; tab < tabs.getTabCount(); tab++)
            part(tabs, "tab", tab, tabs.getTitleAt(tab), tabs.getBoundsAt(tab), things);
    }

    private void part(JComponent of, String kind, int number, String text, Rectangle box, StringBuilder things) {
        Rectangle seen = seenOf(of, box);
        if (seen.isEmpty()) return;
        Point origin = of.getLocationOnScreen();
        Rectangle whole = new Rectangle(box.x + origin.x, box.y + origin.y, box.width, box.height);
        // A click on a tab brings another page to the front, one on a header begins to drag it.
        boolean isPressed = !(of instanceof JTabbedPane || of instanceof JTableHeader);
        thing(identifier(of) + " " + number, kind, text, whole, seen, true, isPressed, null, things);
    }

    /** What scrolling leaves of a part of a component, on the screen. */
    private static Rectangle seenOf(Component component, Rectangle part) {
        Rectangle visible = new Rectangle(component.getSize());
        if (component instanceof JComponent) visible = ((JComponent) component).getVisibleRect();
        if (part != null) visible = visible.intersection(part);
        Point origin = component.getLocationOnScreen();
        visible.translate(origin.x, origin.y);
        return visible;
    }

    private void thing(String id, String kind, String text, Rectangle box, Rectangle seen, boolean isCounted, boolean isPressed,
                       String inside, StringBuilder things) {
        if (seen.isEmpty()) return;
        boolean isWhole = seen.contains(box.x + box.width / 2, box.y + box.height / 2);
        if (things.length() > 0) things.append(',');
        things.append("{\"id\":").append(quoted(id)).append(",\"kind\":").append(quoted(kind)).append(",\"text\":").append(quoted(text))
            .append(",\"frame\":").append(listed(box)).append(",\"visible\":").append(listed(seen)).append(",\"seen\":")
            .append(quoted(isWhole ? "whole" : "cut")).append(",\"isCounted\":").append(isCounted).append(",\"isClicked\":")
            .append(isPressed).append(",\"inside\":").append(inside == null ? "null" : quoted(inside)).append('}');
    }

    private static String listed(Rectangle box) {
        return "[" + box.x + "," + box.y + "," + box.width + "," + box.height + "]";
    }

    private static String quoted(String text) {
        return '"' + text.replace("\\", "\\\\").replace("\"", "\\\"").replace("\n", "\\n") + '"';
    }

    private String identifier(Object object) {
        return identifiers.computeIfAbsent(object, key -> identifiers.size() + 1).toString();
    }

    private void pressed(AWTEvent event) {
        if (event.getID() != MouseEvent.MOUSE_PRESSED || !(event.getSource() instanceof Component)) return;
        Component component = (Component) event.getSource();
        Point at = ((MouseEvent) event).getPoint();
        String part = "";
        if (component instanceof JTree) part = " " + ((JTree) component).getRowForLocation(at.x, at.y);
        if (component instanceof JList) part = " " + ((JList<?>) component).locationToIndex(at);
        if (component instanceof JTable) {
            JTable table = (JTable) component;
            part = " " + (table.rowAtPoint(at) * table.getColumnCount() + table.columnAtPoint(at));
        }
        // A press on a part of a spinner or a combo box is one on the whole.
        for (Component around = component; around != null; around = around.getParent())
            if (around instanceof JSpinner || around instanceof JComboBox) component = around;
        presses.add(identifier(component) + part);
    }
}
