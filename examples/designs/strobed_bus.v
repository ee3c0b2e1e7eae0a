// An 8-bit bus with strobe and handshake (IEEE 488): the controller addresses a talker and a listener,
// the talker answers in two lines, the last byte of each marked by EOI. All lines are active low; the
// eight data lines are one vector in the file. Between the lines the talker works for 2 ms.
`timescale 1ns / 100ps

module strobed_bus;
  localparam SIZE = 48;
  reg [8:1] DIO;
  reg DAV, NRFD, NDAC, ATN, EOI;
  reg [8 * SIZE - 1:0] line;
  integer i;

  // One byte: the talker waits for the listener, strobes, the listener takes the byte.
  task put(input [7:0] value, input last);
    begin
      DIO = ~value;
      EOI = !last;
      #2000 DAV = 0;
      #500 NRFD = 0;
      #1500 NDAC = 1;
      #500 DAV = 1;
      #500 NDAC = 0;
      EOI = 1;
      #7500 NRFD = 1;
      #500;
    end
  endtask

  task command(input [7:0] value);
    begin
      ATN = 0;
      #1000 put(value, 0);
    end
  endtask

  task say(input [8 * SIZE - 1:0] text);
    begin
      line = text;
      for (i = SIZE - 1; i >= 0; i = i - 1)
        if (line[8 * i +: 8] != 0) put(line[8 * i +: 8], i == 0);
    end
  endtask

  initial begin
    $dumpfile("strobed_bus.vcd");
    $dumpvars(1, DIO, DAV, NRFD, NDAC, ATN, EOI);
    DIO = 8'hff;
    DAV = 1;
    NRFD = 1;
    NDAC = 0;
    ATN = 1;
    EOI = 1;
    #100000 command(8'h3f);  // nobody listens
    command(8'h25);          // 5 listens
    command(8'h49);          // 9 talks
    #2000 ATN = 1;
    #20000 say("64 channels, 262140 vectors,\015\012");
    #2000000 say("as long as nothing moves.\015\012");
    #100000 $finish;
  end
endmodule
