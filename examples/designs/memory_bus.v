// A processor's memory bus: 32 address and 32 data lines, four byte enables, four strobes. It
// copies a text into a buffer, waits in a loop that polls one address, and reads the text back.
// 72 lines are more than one module drives: the replay runs on two modules as one instrument.
`timescale 1ns / 1ns

module memory_bus;
  localparam WORDS = 12;
  reg [31:0] ADDRESS, DATA;
  reg [3:0] BE_N;
  reg CS_N, RD_N, WR_N, CODE_N;
  reg [32 * WORDS - 1:0] text;
  integer i;

  // Both cycles take five clocks of 20 ns.
  task write(input [31:0] where, input [31:0] value);
    begin
      ADDRESS = where;
      BE_N = 4'b0000;
      CS_N = 0;
      #20 DATA = value;
      WR_N = 0;
      #40 WR_N = 1;
      #20 CS_N = 1;
      BE_N = 4'b1111;
      #20;
    end
  endtask

  task read(input [31:0] where, input [31:0] value);
    begin
      ADDRESS = where;
      BE_N = 4'b0000;
      CS_N = 0;
      RD_N = 0;
      #40 DATA = value;
      #20 RD_N = 1;
      #20 CS_N = 1;
      BE_N = 4'b1111;
      #20;
    end
  endtask

  initial begin
    $dumpfile("memory_bus.vcd");
    $dumpvars(1, ADDRESS, DATA, BE_N, CODE_N, CS_N, RD_N, WR_N);
    text = "Thirty-two bits at a time, two modules as one...";
    ADDRESS = 32'hffff0000;
    DATA = 0;
    BE_N = 4'b1111;
    CS_N = 1;
    RD_N = 1;
    WR_N = 1;
    CODE_N = 1;
    #1000;
    for (i = 0; i < WORDS; i = i + 1)
      write(32'h20000000 + 4 * i, text[32 * (WORDS - 1 - i) +: 32]);
    for (i = 0; i < 400; i = i + 1) read(32'h40001004, 32'h00000001);
    read(32'h40001004, 32'h80000001);
    for (i = 0; i < WORDS; i = i + 1)
      read(32'h20000000 + 4 * i, text[32 * (WORDS - 1 - i) +: 32]);
    #5000 $finish;
  end
endmodule
